// The selection of the shown directory as a file list.
#include "commands/transf.h"
#include "model/dir.h"

namespace tav {

bool one_dir_packed = false;

FileListRecord fl_pack_transf()
{
    FileListRecord list;
    list.directory = gDir.path.c_str();
    one_dir_packed = false;
    for (int i = 0; i < gDir.count && list.count < gDir.nselected; i++) {
        const DirEntry &entry = *gDir.entries[static_cast<size_t>(i)];
        if (!(entry.flags & DIR_SELECTED))
            continue;
        list.names.push_back(entry.name);
        list.count++;
        one_dir_packed = list.count == 1 && dir_is_directory(entry);
    }
    return list;
}

void fl_free_transf(FileListRecord &list) { list = FileListRecord(); }

} // namespace tav

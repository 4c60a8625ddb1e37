// Starting a job for a file list.
#include "commands/file_op.h"
#include "fileops/fop.h"
#include "fileops/slot.h"
#include "fileops/slot_wait.h"

namespace tav {

FileOpStart gFileOpStart = fop_start_cmd;

int _file_op(int op, FileListRecord list, const char *dest)
{
    if (list.count <= 0)
        return -1;
    return gFileOpStart(op, list.directory, list.count, list.names.data(), dest);
}

void file_op_all(int op, std::vector<FileListRecord> lists, const std::string &dest)
{
    for (FileListRecord &list : lists) {
        if (slot_count() < SLOT_MAX && slot_waiting() == 0) {
            _file_op(op, std::move(list), dest.c_str());
            continue;
        }
        auto kept = std::make_shared<FileListRecord>(std::move(list));
        slot_wait([op, kept, dest] { _file_op(op, std::move(*kept), dest.c_str()); });
    }
}

} // namespace tav

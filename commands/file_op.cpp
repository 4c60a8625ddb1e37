// Starting a job for a file list.
#include "commands/file_op.h"
#include "fileops/fop.h"

namespace tav {

FileOpStart gFileOpStart = fop_start_cmd;

int _file_op(int op, FileListRecord list, const char *dest)
{
    if (list.count <= 0)
        return -1;
    return gFileOpStart(op, list.directory, list.count, list.names.data(), dest);
}

} // namespace tav

// Starting a job for a file list.
#pragma once

#include "commands/transf.h"

namespace tav {

// What starts the jobs: fop_start_cmd; tests put their own here.
using FileOpStart = int (*)(int op, const char *source_dir, int count, const char *const *names,
                            const char *dest);
extern FileOpStart gFileOpStart;

// Starts a job (FOP_COPY, FOP_MOVE, FOP_DELETE) for the list and forgets the list. What the starter
// returned; -1 for an empty list.
int _file_op(int op, FileListRecord list, const char *dest);

// Starts a job for each list; those for which there is no slot wait for one.
void file_op_all(int op, std::vector<FileListRecord> lists, const std::string &dest);

} // namespace tav

// Reading from and writing to a shell command through a stream. Any thread: the list of open
// streams is guarded by a mutex. Children start as platform/child starts them.
#pragma once

#include <cstdio>

namespace tav {

// Runs the command with sh; mode begins with "r" (read its output) or "w" (write its input). Null
// with errno (EINVAL for another mode).
FILE *popen(const char *command, const char *mode);

// Closes the stream, waits for the command and returns its wait status; -1 with errno (EINVAL for a
// stream that popen did not open).
int pclose(FILE *stream);

// Closes the stream without waiting; the command is collected when it ends.
void pipe_drop(FILE *stream);

} // namespace tav

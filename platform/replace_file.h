// Replacing a file so that, whatever happens, either the old or the new content is there, whole.
#pragma once

#include <string>
#include <string_view>
#include <sys/types.h>

namespace tav {

// The calls that can fail on a full or broken disk; tests put others in their place.
struct ReplaceCalls {
    ssize_t (*write)(int fd, const void *data, size_t size);
    int (*fsync)(int fd);
    int (*rename)(const char *from, const char *to);
};
extern ReplaceCalls gReplaceCalls;

// Writes a new file beside path (through a link: beside what it points to), syncs it and renames it
// over. An existing file keeps its mode, a new one gets 0666 less the mask. A file that could not
// have been opened for writing is left alone; what is no regular file (a device, a pipe) is written
// to, never replaced. 0, or -1 with errno; no temporary file stays behind, and one that a killed
// process left there a minute ago or longer is removed.
int replace_file_write(const char *path, std::string_view content);

// Reads a whole file of at most limit bytes. 0, or -1 with errno.
int replace_file_read(const char *path, std::string &content, size_t limit);

} // namespace tav

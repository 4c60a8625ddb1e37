// Small questions about paths.
#include "model/fs.h"

#include "model/es.h"

#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tav {

namespace {

bool x_is_directory(int fd, const dirent &entry)
{
    if (entry.d_type != DT_UNKNOWN)
        return entry.d_type == DT_DIR;
    struct stat status;
    return fstatat(fd, entry.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISDIR(status.st_mode);
}

bool x_counts(const char *name, unsigned flags)
{
    if (name[0] != '.')
        return true;
    return strcmp(name, ".") != 0 && strcmp(name, "..") != 0 && (flags & FS_DOT_NAMES);
}

} // namespace

int fs_path_is_directory(const char *path)
{
    struct stat status;
    if (!path) {
        errno = ENOENT;
        return -1;
    }
    if (stat(path, &status) != 0)
        return -1;
    if (!S_ISDIR(status.st_mode))
        return 0;
    return status.st_nlink == 0 ? 2 : static_cast<int>(status.st_nlink);
}

int fs_path_has_subdirectories(const char *parent, const char *name, unsigned flags)
{
    std::string path;
    es_construct_fullpath(path, parent, name);
    int links = fs_path_is_directory(path.c_str());
    if (links > 2)
        return links;
    int fd = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    DIR *dir = fd < 0 ? nullptr : fdopendir(fd);
    if (!dir) {
        int error = errno;
        if (fd >= 0)
            close(fd);
        errno = error;
        return -1;
    }
    int answer = 0;
    while (const dirent *entry = readdir(dir)) {
        if (x_counts(entry->d_name, flags) && x_is_directory(fd, *entry)) {
            answer = links;
            break;
        }
    }
    closedir(dir);
    return answer;
}

} // namespace tav

// Reading a directory for a cascade of directory menus.
#include "commands/ca_scan.h"
#include "commands/dtm_scan.h"

#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>

namespace tav {

namespace {

bool x_is_skipped(const CaReading &reading, const char *name)
{
    if (name[0] != '.')
        return false;
    return !reading.dot_names || strcmp(name, ".") == 0 || strcmp(name, "..") == 0;
}

bool x_is_directory(const CaReading &reading, const char *name)
{
    struct stat status;
    if (fstatat(dirfd(reading.dir.get()), name, &status, AT_SYMLINK_NOFOLLOW) != 0 &&
        stat(dtm_join(reading.path, name).c_str(), &status) != 0)
        return false;
    return S_ISDIR(status.st_mode);
}

} // namespace

int ca_open(CaReading &reading, const std::string &path, bool dot_names, const std::string &after)
{
    reading.path = path;
    reading.dot_names = dot_names;
    reading.dir.reset(opendir(path.c_str()));
    if (!reading.dir)
        return -1;
    if (after.empty())
        return 0;
    while (const dirent *entry = readdir(reading.dir.get()))
        if (after == entry->d_name)
            return 0;
    rewinddir(reading.dir.get());
    return 0;
}

CaEntry ca_next(CaReading &reading, std::string &name)
{
    const dirent *entry = reading.dir ? readdir(reading.dir.get()) : nullptr;
    if (entry == nullptr) {
        reading.dir.reset();
        return CaEntry::end;
    }
    if (x_is_skipped(reading, entry->d_name) || !x_is_directory(reading, entry->d_name))
        return CaEntry::other;
    name = entry->d_name;
    return CaEntry::directory;
}

} // namespace tav

// Reading a directory for a cascade of directory menus, one entry at a time, so that whoever reads
// can do something else in between. Knows no Qt.
#pragma once

#include <dirent.h>
#include <memory>
#include <string>

namespace tav {

struct CaCloseDir {
    void operator()(DIR *dir) const { closedir(dir); }
};

// A directory being read.
struct CaReading {
    std::unique_ptr<DIR, CaCloseDir> dir; // null once it is at its end
    std::string path;
    bool dot_names = false; // names beginning with "." count
};

// What one entry was.
enum class CaEntry {
    directory, // a subdirectory
    other,     // nothing for a menu
    end,       // there is none any more
};

// Opens the directory, which must be readable, behind the subdirectory named after; at its
// beginning when that is empty or not there any more. 0, or -1 with errno.
int ca_open(CaReading &reading, const std::string &path, bool dot_names, const std::string &after);

// The next entry; name is set when it is a subdirectory. Links are none.
CaEntry ca_next(CaReading &reading, std::string &name);

} // namespace tav

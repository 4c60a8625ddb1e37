// Where the program lies that writes its arguments down: beside the test that asks.
#pragma once

#include <climits>
#include <string>
#include <unistd.h>

namespace tav::test {

// Its absolute path.
inline std::string write_args_path()
{
    char self[PATH_MAX];
    ssize_t length = readlink("/proc/self/exe", self, sizeof self);
    std::string path(self, length < 0 ? 0 : static_cast<size_t>(length));
    return path.erase(path.rfind('/') + 1) + "write_args";
}

} // namespace tav::test

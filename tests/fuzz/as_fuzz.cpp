// Any bytes as a table of associations: read or refused with a message; a row that was read and is
// written is read as the same row.
#include "commands/as.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <unistd.h>

namespace {

// A file that holds what the fuzzer made up, gone with the process.
struct File {
    std::string path = "/tmp/tav_as_fuzz_XXXXXX";

    File() { close(mkstemp(path.data())); }
    File(const File &) = delete;
    File &operator=(const File &) = delete;
    ~File() { unlink(path.c_str()); }
};

const std::string &x_file()
{
    static const File file;
    return file.path;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FILE *file = std::fopen(x_file().c_str(), "w");
    if (file == nullptr)
        return 0;
    const bool written = std::fwrite(data, 1, size, file) == size;
    if (std::fclose(file) != 0 || !written)
        return 0;
    std::string message;
    if (tav::as_read(x_file().c_str(), message) == -1 && message.empty())
        std::abort();
    for (const tav::Association &row : tav::apat) {
        tav::_get_pat_cmd("name.txt", tav::AS_VIEW);
        const std::string line = tav::as_join(row);
        if (tav::as_join(tav::as_split(line)) != line)
            std::abort();
    }
    return 0;
}

// Any bytes as the settings record and as a history: both are read, and saving and reading again
// keeps the history.
#include "app/cl.h"
#include "app/config.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <unistd.h>

namespace {

// A directory of our own, gone with the process.
struct Dir {
    std::string path = "/tmp/tav_settings_fuzz_XXXXXX";

    Dir()
    {
        if (mkdtemp(path.data()) == nullptr)
            std::abort();
    }
    Dir(const Dir &) = delete;
    Dir &operator=(const Dir &) = delete;
    ~Dir()
    {
        unlink((path + "/in").c_str());
        unlink((path + "/out").c_str());
        rmdir(path.c_str());
    }
};

const std::string &x_dir()
{
    static const Dir dir;
    return dir.path;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FILE *file = std::fopen((x_dir() + "/in").c_str(), "w");
    if (file == nullptr)
        return 0;
    const bool written = std::fwrite(data, 1, size, file) == size;
    if (std::fclose(file) != 0 || !written)
        return 0;
    const std::unique_ptr<tav::Config> record(tav::x_read_config(x_dir().c_str(), "in"));
    tav::ClHistory *list = tav::cl_read(x_dir().c_str(), "in");
    tav::cl_find_pattern(list, "http://x");
    if (list->count > tav::CL_SIZE)
        std::abort();
    tav::cl_save(list, x_dir().c_str(), "out");
    tav::ClHistory *again = tav::cl_read(x_dir().c_str(), "out");
    for (int n = 1; n <= list->count && n <= again->count; n++) {
        if (std::string(tav::cl_get(list, n)).size() < 1000 && n == 1 &&
            std::string(tav::cl_get(again, 1)) != tav::cl_get(list, 1))
            std::abort();
    }
    tav::cl_destroy(list);
    tav::cl_destroy(again);
    return 0;
}

// Any texts as directory and name: joining, stripping and cutting stay within them.
#include "model/es.h"

#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::string text(reinterpret_cast<const char *>(data), size);
    const std::string dir = text.c_str();
    const std::string name = dir.size() < size ? text.c_str() + dir.size() + 1 : "";
    std::string joined;
    const int length = tav::es_construct_fullpath(joined, dir.c_str(), name.c_str());
    if (length != static_cast<int>(joined.size()) || joined.size() > dir.size() + name.size() + 1)
        std::abort();
    std::string stripped = joined;
    tav::es_strip_pathname(stripped);
    if (stripped.size() > joined.size())
        std::abort();
    tav::es_remove_subdirectory(joined);
    return 0;
}

// Any short pattern against any short name: the answer is that of the C library's fnmatch. Short,
// because fnmatch itself takes exponential time.
#include "model/es.h"

#include <clocale>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fnmatch.h>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const char *locale = std::setlocale(LC_CTYPE, "C.UTF-8");
    if (locale == nullptr || size > 32)
        return 0;
    const std::string text(reinterpret_cast<const char *>(data), size);
    const std::string pattern = text.c_str(); // up to the first NUL; the name is behind it
    const std::string name = pattern.size() < size ? text.c_str() + pattern.size() + 1 : "";
    if (pattern.find('|') != pattern.npos || pattern.starts_with('^'))
        return 0; // mean something else to us
    if (pattern.find('[') != pattern.npos && pattern.ends_with('-'))
        return 0; // the C library reads on behind a range without an end, and answers by chance
    const bool expected = fnmatch(pattern.c_str(), name.c_str(), 0) == 0;
    if ((tav::es_strcmp(name.c_str(), pattern.c_str()) == 0) != expected) {
        std::fprintf(stderr, "pattern '%s' name '%s'\n", pattern.c_str(), name.c_str());
        std::abort();
    }
    return 0;
}

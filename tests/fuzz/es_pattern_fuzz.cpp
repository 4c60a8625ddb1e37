// Any pattern against any name: an answer that is the same both ways of asking, in linear time.
#include "model/es.h"

#include <clocale>
#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const char *locale = std::setlocale(LC_CTYPE, "C.UTF-8");
    if (locale == nullptr || size > 4096)
        return 0;
    const std::string text(reinterpret_cast<const char *>(data), size);
    const std::string pattern = text.c_str(); // up to the first NUL; the name is behind it
    const std::string name = pattern.size() < size ? text.c_str() + pattern.size() + 1 : "";
    const bool matches = tav::es_strcmp(name.c_str(), pattern.c_str()) == 0;
    if (tav::es_pattern_matches(tav::es_pattern_prepare(pattern.c_str()), name.c_str()) != matches)
        std::abort();
    return 0;
}

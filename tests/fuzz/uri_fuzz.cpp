// Any text from another program's clipboard: it names absolute paths or is refused; what we make of
// the paths names the same ones again.
#include "commands/uri.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::string_view text(reinterpret_cast<const char *>(data), size);
    tav::UriFiles files;
    bool cut = false;
    tav::uri_parse_kde_mark(text);
    tav::uri_parse_gnome(text, cut, files);
    tav::UriFiles list;
    if (tav::uri_parse_list(text, list) == -1)
        return 0;
    for (const tav::FileListRecord &group : list.groups) {
        tav::UriFiles again;
        if (tav::uri_parse_list(tav::uri_make_list(group), again) == -1 ||
            again.groups.size() != 1 || again.groups[0].count != group.count)
            std::abort();
    }
    return 0;
}

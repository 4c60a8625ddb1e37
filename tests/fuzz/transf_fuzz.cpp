// File lists from other people's clipboards and drags: the packed form, URI lists, the GNOME form.
// What is taken must consist of names that can exist and survive being packed again.
#include "commands/transf_take.h"
#include "commands/uri.h"

#include <cstdint>
#include <cstdlib>

using namespace tav;

namespace {

void x_check(bool holds)
{
    if (!holds)
        abort();
}

void x_check_list(const FileListRecord &list)
{
    x_check(list.count > 0 && static_cast<size_t>(list.count) == list.names.size());
    x_check(transf_is_directory(list.directory));
    for (const char *name : list.names)
        x_check(transf_is_name(name));
    TransfOffer again;
    x_check(transf_unpack(transf_pack(list, true, {}), again) == 0 && again.cut);
    x_check(again.list.count == list.count);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::string text(reinterpret_cast<const char *>(data), size);
    for (int form = 0; form < 3; form++) {
        TransfForms forms;
        (form == 0 ? forms.own : form == 1 ? forms.gnome : forms.uris) = text;
        TransfFiles files;
        if (transf_take(forms, files) != 0)
            continue;
        x_check(!files.lists.empty());
        for (const FileListRecord &list : files.lists)
            x_check_list(list);
    }
    return 0;
}

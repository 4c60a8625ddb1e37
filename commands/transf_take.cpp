// Choosing among the forms of a file list.
#include "commands/transf_take.h"
#include "commands/uri.h"

namespace tav {

namespace {

bool x_take_own(const TransfGet &get, TransfFiles &files)
{
    std::string bytes;
    TransfOffer offer;
    if (!get(TRANSF_MIME, bytes) || transf_unpack(bytes, offer) != 0)
        return false;
    files.cut = offer.cut;
    files.ours = true;
    files.id = offer.id;
    files.lists.clear();
    files.lists.push_back(std::move(offer.list));
    return true;
}

bool x_take_uris(const TransfGet &get, UriFiles &uris)
{
    std::string bytes;
    return get(TRANSF_MIME_URIS, bytes) && uri_parse_list(bytes, uris) == 0;
}

// A URI list with the mark of a cut beside it. It goes before the GNOME form, which says the same
// then: one program takes a cut off the clipboard as soon as anybody has asked for that form.
bool x_take_marked(const TransfGet &get, UriFiles &uris)
{
    std::string mark;
    return get(TRANSF_MIME_KDE, mark) && uri_parse_kde_mark(mark) && x_take_uris(get, uris);
}

bool x_take_gnome(const TransfGet &get, bool &cut, UriFiles &uris)
{
    std::string bytes;
    return get(TRANSF_MIME_GNOME, bytes) && uri_parse_gnome(bytes, cut, uris) == 0;
}

bool x_take_others(const TransfGet &get, TransfFiles &files)
{
    UriFiles uris;
    bool cut = x_take_marked(get, uris);
    if (!cut && !x_take_gnome(get, cut, uris) && !x_take_uris(get, uris))
        return false;
    files.cut = cut;
    files.ours = false;
    files.id = {};
    files.lists = std::move(uris.groups);
    return true;
}

const std::string &x_form(const TransfForms &forms, std::string_view mime)
{
    return mime == TRANSF_MIME         ? forms.own
           : mime == TRANSF_MIME_GNOME ? forms.gnome
           : mime == TRANSF_MIME_URIS  ? forms.uris
                                       : forms.kde;
}

} // namespace

int transf_take_from(const TransfGet &get, TransfFiles &files)
{
    return x_take_own(get, files) || x_take_others(get, files) ? 0 : -1;
}

int transf_take(const TransfForms &forms, TransfFiles &files)
{
    auto get = [&forms](const char *mime, std::string &bytes) {
        bytes = x_form(forms, mime);
        return !bytes.empty();
    };
    return transf_take_from(get, files);
}

} // namespace tav

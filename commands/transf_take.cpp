// Choosing among the forms of a file list.
#include "commands/transf_take.h"
#include "commands/uri.h"

namespace tav {

namespace {

bool x_take_own(const TransfForms &forms, TransfFiles &files)
{
    TransfOffer offer;
    if (transf_unpack(forms.own, offer) != 0)
        return false;
    files.cut = offer.cut;
    files.ours = true;
    files.id = offer.id;
    files.lists.clear();
    files.lists.push_back(std::move(offer.list));
    return true;
}

bool x_take_others(const TransfForms &forms, TransfFiles &files)
{
    bool cut = false;
    UriFiles uris;
    if (uri_parse_gnome(forms.gnome, cut, uris) != 0) {
        if (uri_parse_list(forms.uris, uris) != 0)
            return false;
        cut = uri_parse_kde_mark(forms.kde);
    }
    files.cut = cut;
    files.ours = false;
    files.id = {};
    files.lists = std::move(uris.groups);
    return true;
}

} // namespace

int transf_take(const TransfForms &forms, TransfFiles &files)
{
    return x_take_own(forms, files) || x_take_others(forms, files) ? 0 : -1;
}

} // namespace tav

// The live table of associations: looking up a name in it, and the rows it has without a file.
#include "commands/as.h"

#include <cctype>
#include <cstring>

namespace tav {

std::vector<Association> apat;

namespace {

struct Row {
    const char *pattern, *open, *view, *edit;
};

const Row DEFAULTS[] = {
    {"*.[ch]", "ped", "ped", "ped"},
    {"[Mm]akefile", "pterm -z make -f @", "ped", "ped"},
    {"*.txt", "ped", "ped", "ped"},
    {"*.core", "pterm -z coreinfo @", "", ""},
    {"^*.jpg|*.jpeg|*.gif|*.bmp", "pv", "pv", "pv"},
    {"^*.html|*.htm", "voyager -u file://$PWD/@", "voyager -u file://$PWD/@", ""},
    {"^*.rm|*.rm|*.ram|*.smi|*.smil", "realplay", "realplay", ""},
    {"^*.wav|*.aif|*.aiff", "phplay", "phplay", ""},
    {"^*.mpeg|*.mp[123agv]|*.au|*.iff", "phplay", "phplay", ""},
    {"^*.ttf|*.pfr|*.phf|*.ffs", "cp $PWD/@ /usr/photon/font", "", ""},
};

} // namespace

void as_set_defaults()
{
    apat.clear();
    for (const Row &row : DEFAULTS)
        _add_pat(row.pattern, row.open, row.view, row.edit);
}

void _add_pat(const char *pattern, const char *open, const char *view, const char *edit)
{
    apat.push_back({pattern, open, edit, view, as_match_make(pattern)});
}

int _get_pat_idx(const char *file_name)
{
    for (size_t i = 0; i < apat.size(); i++) {
        if (as_match(apat[i].match, file_name))
            return static_cast<int>(i);
    }
    return -1;
}

const char *as_command(const Association &row, AssocCommandKind kind)
{
    const std::string &command = kind == AS_OPEN ? row.open : kind == AS_VIEW ? row.view : row.edit;
    return isempty(command.c_str()) ? nullptr : command.c_str();
}

const char *_get_pat_cmd(const char *file_name, AssocCommandKind kind)
{
    int index = _get_pat_idx(file_name);
    return index < 0 ? nullptr : as_command(apat[static_cast<size_t>(index)], kind);
}

bool isempty(const char *text)
{
    for (; text != nullptr && *text != '\0'; text++) {
        if (!std::isspace(static_cast<unsigned char>(*text)))
            return false;
    }
    return true;
}

} // namespace tav

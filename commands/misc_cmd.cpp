// From a template and the selection to a command line.
#include "commands/as.h"
#include "commands/misc.h"
#include "commands/quote.h"

#include "model/dir.h"

namespace tav {

namespace {

bool x_current_is_directory()
{
    int current = gDir.current;
    return current >= 0 && current < gDir.count &&
           dir_is_directory(*gDir.entries[static_cast<size_t>(current)]);
}

// The names of the selected entries, in list order. False when a directory is among them.
bool x_selected_names(std::vector<std::string> &names)
{
    for (int i = 0; i < gDir.count; i++) {
        const DirEntry &entry = *gDir.entries[static_cast<size_t>(i)];
        if (!(entry.flags & DIR_SELECTED))
            continue;
        if (dir_is_directory(entry))
            return false;
        names.emplace_back(entry.name);
    }
    return !names.empty();
}

bool x_current_name(std::vector<std::string> &names)
{
    if (gDir.current < 0 || gDir.current >= gDir.count)
        return false;
    names.emplace_back(gDir.entries[static_cast<size_t>(gDir.current)]->name);
    return true;
}

bool x_all_plain(const std::vector<std::string> &names)
{
    for (const std::string &name : names) {
        if (!quote_is_plain(name))
            return false;
    }
    return true;
}

// Several ordinary names, one after the other, then the placeholder goes with what stands around
// it.
std::string x_make_list(std::string line, const std::vector<std::string> &names)
{
    for (const std::string &name : names) {
        std::string next;
        misc_make_cmd2(next, line, name, '@');
        line = std::move(next);
    }
    size_t last = line.rfind('@');
    if (last != line.npos && last >= 2)
        line.erase(last - 2, 4);
    return line;
}

// The command line, in out; false when a name cannot be put in safely.
bool x_build(std::string &out, const char *command, const std::vector<std::string> &names,
             bool list)
{
    std::string line = quote_wrap(command);
    if (gDir.has_path && !quote_is_plain_word(gDir.path))
        line = quote_pwd(line);
    bool plain = x_all_plain(names) && !quote_needs_care(line);
    line = quote_mark(line, plain);
    if (!plain)
        return quote_fill(out, line, names, '@');
    if (list)
        out = x_make_list(std::move(line), names);
    else
        misc_make_cmd(out, line, names[0], '@');
    return true;
}

} // namespace

int file_cmd(const char *command, const char *file_name)
{
    if (gDir.nselected == 1 && x_current_is_directory())
        return -1;
    if (isempty(command))
        return 0;
    std::vector<std::string> names;
    bool list = file_name == nullptr && gDir.nselected > 0;
    if (file_name != nullptr)
        names.emplace_back(file_name);
    else if (!(list ? x_selected_names(names) : x_current_name(names)))
        return -1;
    std::string line;
    if (!x_build(line, command, names, list)) {
        if (gMiscHooks.status != nullptr)
            gMiscHooks.status("Cannot put this name into \"" + std::string(command) + "\"");
        return -1;
    }
    return misc_run(line) < 0 ? -1 : 0;
}

void misc_make_cmd(std::string &out, std::string_view command, std::string_view name, char marker)
{
    std::string line(command);
    if (quote_find(command, marker) == command.npos)
        (line += ' ') += marker;
    out.clear();
    if (!quote_is_plain(name)) {
        if (!quote_fill(out, line, {std::string(name)}, marker))
            out.clear();
        return;
    }
    std::string_view rest = line;
    for (size_t place; (place = quote_find(rest, marker)) != rest.npos;) {
        out += rest.substr(0, place);
        out += name;
        rest.remove_prefix(place + 1);
    }
    out += rest;
}

void misc_make_cmd2(std::string &out, std::string_view command, std::string_view name, char marker)
{
    size_t place = quote_find(command, marker);
    if (place == command.npos) {
        misc_make_cmd(out, command, name, marker);
        return;
    }
    // The name is escaped by the quoting up to the marker; what stands behind it does not matter.
    std::string front;
    misc_make_cmd(front, command.substr(0, place + 1), name, marker);
    out = front + "' '";
    out += command.substr(place);
}

} // namespace tav

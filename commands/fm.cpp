// Handlers of the File menu that start something. What several entries are selected for is done
// from a copy of their names.
#include "commands/fm.h"

#include "app/config.h"
#include "commands/as.h"
#include "commands/misc.h"
#include "commands/quote.h"
#include "platform/shown.h"
#include "platform/w.h"
#include "views/fl.h"

#include <cstdio>
#include <cstring>

namespace tav {

namespace {

const DirEntry &x_entry(int index) { return *gDir.entries[static_cast<size_t>(index)]; }

bool x_is_entry(int index) { return index >= 0 && index < gDir.count; }

struct Chosen {
    int index; // when it was chosen
    std::string name;
    bool directory;
};

std::vector<Chosen> x_selected()
{
    std::vector<Chosen> chosen;
    for (int i = 0; i < gDir.count; i++) {
        if (x_entry(i).flags & DIR_SELECTED)
            chosen.push_back({i, x_entry(i).name, dir_is_directory(x_entry(i))});
    }
    return chosen;
}

// Opens it where it is now, if it still is.
void x_open(const Chosen &one)
{
    bool there = x_is_entry(one.index) && one.name == x_entry(one.index).name;
    for (int i = 0; !there && i < gDir.count; i++) {
        if (one.name == x_entry(i).name) {
            fl_open(i);
            return;
        }
    }
    if (there)
        fl_open(one.index);
}

// The print command with a bare placeholder between single quotes: only those make a list of names.
std::string x_print_template(std::string command)
{
    if (command.find('@') == command.npos)
        command += " @";
    if (command.find(' ') == command.npos)
        return command;
    std::string out;
    for (size_t i = 0; i < command.size(); i++) {
        char before = i > 0 ? command[i - 1] : ' ';
        char after = i + 1 < command.size() ? command[i + 1] : ' ';
        bool bare = command[i] == '@' && std::strchr(" \t", before) && std::strchr(" \t", after);
        out += bare ? std::string("'@'") : std::string(1, command[i]);
    }
    return out;
}

void x_say_printed(int selected, const std::string &name)
{
    QWidget *status = w_find("status1");
    fl_status_flush(); // or it would wipe out what is shown now
    if (selected < 2)
        wprintf(status, "'%s' printed", shown_text(name).toUtf8().constData());
    else
        wprintf(status, "%d items printed", selected);
}

} // namespace

std::vector<std::string> fm_selected_files()
{
    std::vector<std::string> names;
    for (const Chosen &one : x_selected()) {
        if (!one.directory)
            names.push_back(one.name);
    }
    return names;
}

int fm_new_window(QWidget *)
{
    misc_run("tav");
    return W_CONTINUE;
}

int fm_open(QWidget *)
{
    if (fl_is_reading() || gDir.nseldirs > 1)
        return W_CONTINUE;
    if (gDir.nselected == 0) {
        fl_open(gDir.current);
        return W_CONTINUE;
    }
    const std::vector<Chosen> chosen = x_selected();
    for (const Chosen &one : chosen) {
        if (!one.directory)
            x_open(one);
    }
    for (const Chosen &one : chosen) {
        if (one.directory)
            x_open(one); // last: it leaves the directory in which the others are
    }
    return W_CONTINUE;
}

int fm_open_another(QWidget *)
{
    const std::vector<Chosen> chosen = x_selected();
    if (chosen.size() != 1 || !chosen[0].directory)
        return W_CONTINUE;
    misc_run("tav " + quote_argument(fl_get_fullpath(chosen[0].index)));
    return W_CONTINUE;
}

int fm_edit(QWidget *)
{
    for (const std::string &name : fm_selected_files()) {
        const char *command = _get_pat_cmd(name.c_str(), AS_EDIT);
        file_cmd(command ? command : gConfig->edit_command, name.c_str());
    }
    return W_CONTINUE;
}

int fm_view(QWidget *)
{
    for (const std::string &name : fm_selected_files()) {
        if (const char *command = _get_pat_cmd(name.c_str(), AS_VIEW))
            file_cmd(command, name.c_str());
    }
    return W_CONTINUE;
}

int fm_print(QWidget *)
{
    if (isempty(gConfig->print_command))
        std::snprintf(gConfig->print_command, sizeof gConfig->print_command, "lp -dtext @");
    const int selected = gDir.nselected;
    const std::string name = x_is_entry(gDir.current) ? x_entry(gDir.current).name : "";
    if (file_cmd(x_print_template(gConfig->print_command).c_str(), nullptr) == 0)
        x_say_printed(selected, name);
    return W_CONTINUE;
}

int fm_open_pterm(QWidget *)
{
    misc_run(gConfig->terminal_command);
    return W_CONTINUE;
}

void fm_run_open(int index)
{
    if (!x_is_entry(index))
        return;
    const std::string name = x_entry(index).name;
    std::vector<std::string> commands;
    for (const Association &row : apat) {
        const char *command =
            as_match(row.match, name.c_str()) ? as_command(row, AS_OPEN) : nullptr;
        if (command != nullptr)
            commands.emplace_back(command);
    }
    for (const std::string &command : commands)
        file_cmd(command.c_str(), name.c_str());
}

bool fm_has_open(int index) { return x_is_entry(index) && _get_pat_idx(x_entry(index).name) >= 0; }

int fm_run_program(const std::string &path) { return misc_run_program(path) < 0 ? -1 : 0; }

} // namespace tav

// Changing directory and opening entries.
#include "model/dir.h"
#include "model/es.h"
#include "model/fs.h"
#include "platform/shown.h"
#include "platform/w.h"
#include "views/fl.h"
#include "views/history.h"

#include <unistd.h>

namespace tav {

namespace {

bool x_is_entry(int index) { return index >= 0 && index < gDir.count; }

// Normalises a path and tells whether it can be shown; says why not. The shown path itself cannot.
bool x_check_path(const char *path, std::string &checked)
{
    checked = path ? path : "";
    es_strip_pathname(checked);
    if (gDir.has_path && checked == gDir.path)
        return false;
    const std::string shown = shown_text(checked).toStdString();
    const int directory = fs_path_is_directory(checked.c_str());
    if (directory < 0)
        wreport(gBase, "Error", "Directory '%s', not found", shown.c_str());
    else if (directory == 0)
        wreport(gBase, "Error", "Path '%s' not found", shown.c_str());
    else if (access(checked.c_str(), R_OK) != 0)
        wreport(gBase, "Error", "Cannot access directory '%s'", shown.c_str());
    else
        return true;
    return false;
}

std::string x_parent(std::string path)
{
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    const size_t slash = path.rfind('/');
    if (slash == std::string::npos || slash == 0)
        return "/";
    path.resize(slash);
    return path;
}

std::string x_last_name(std::string path)
{
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    return path.substr(path.rfind('/') + 1);
}

void x_open_file(int index)
{
    if (gFlHooks.has_open && gFlHooks.has_open(index)) {
        if (gFlHooks.run_open)
            gFlHooks.run_open(index);
        return;
    }
    if (!(gDir.entries[static_cast<size_t>(index)]->stat.st_mode & S_IXUSR) ||
        !gFlHooks.run_program)
        return;
    wblock(gBase, 1);
    gFlHooks.run_program(fl_get_fullpath(index));
    wblock(gBase, 0);
}

} // namespace

std::string fl_get_fullpath(int index)
{
    if (!x_is_entry(index))
        return {};
    std::string path = gDir.path;
    if (path.empty() || path.back() != '/')
        path += '/';
    return path + gDir.entries[static_cast<size_t>(index)]->name;
}

int fl_setpath(const char *path)
{
    std::string checked;
    if (fl_is_reading() || !x_check_path(path, checked))
        return -1;
    gDir.path = checked;
    gDir.has_path = true;
    fl_refresh();
    return 0;
}

int fl_newpath(QWidget *, const char *path)
{
    const std::string previous = gDir.path;
    const bool had_path = gDir.has_path;
    if (fl_setpath(path) != 0)
        return -1;
    x_history_clear(forward_history);
    x_history_push(backward_history, had_path ? previous.c_str() : nullptr);
    if (gFlHooks.history_changed)
        gFlHooks.history_changed();
    return 0;
}

void fl_up()
{
    if (!gDir.has_path || gDir.path.size() <= 1)
        return;
    const std::string left = x_last_name(gDir.path);
    if (fl_newpath(nullptr, x_parent(gDir.path).c_str()) == 0)
        fl_select_index(fl_goto(left.c_str(), 0, FL_EXACT));
}

void fl_down()
{
    if (gDir.current == DIR_PARENT)
        fl_up();
    else if (x_is_entry(gDir.current))
        fl_newpath(nullptr, fl_get_fullpath(gDir.current).c_str());
}

int fl_open(int index)
{
    if (index == DIR_PARENT)
        fl_up();
    else if (!x_is_entry(index))
        return -1;
    else if (dir_is_directory(*gDir.entries[static_cast<size_t>(index)]))
        fl_newpath(nullptr, fl_get_fullpath(index).c_str());
    else
        x_open_file(index);
    return 0;
}

bool fl_takes_drop(int index)
{
    return index == DIR_PARENT ||
           (x_is_entry(index) && dir_is_directory(*gDir.entries[static_cast<size_t>(index)]));
}

} // namespace tav

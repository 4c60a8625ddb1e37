// Finding entries by name, and the current entry.
#include "model/dir.h"
#include "model/es.h"
#include "views/fl.h"
#include "views/fl_access.h"
#include "views/fl_select.h"
#include "views/fl_view.h"

#include <cstring>
#include <string_view>
#include <unordered_map>

namespace tav {

namespace {

using Action = void (*)(int index);

DirEntry &x_at(int index) { return *gDir.entries[static_cast<size_t>(index)]; }

bool x_is_left_out(const DirEntry &entry, unsigned flags)
{
    return (flags & FL_FILES) && dir_is_directory(entry);
}

// How many entries a search looks at: a backward one begins at entry 0 too, so it sees only that.
int x_reach(unsigned flags) { return (flags & FL_BACKWARD) && gDir.count > 1 ? 1 : gDir.count; }

int x_find_exact(const char *text, unsigned flags)
{
    for (int i = 0; i < x_reach(flags); ++i)
        if (!x_is_left_out(x_at(i), flags) && strcmp(x_at(i).name, text) == 0)
            return i;
    return DIR_NONE;
}

// The first match's index, or with an action the last one's, after calling it for each.
int x_find_pattern(const char *text, unsigned flags, Action action)
{
    const size_t length = strlen(text);
    const EsPattern pattern = es_pattern_prepare(text);
    int found = DIR_NONE;
    for (int i = 0; i < x_reach(flags); ++i) {
        const DirEntry &entry = x_at(i);
        if (x_is_left_out(entry, flags))
            continue;
        const bool prefix = (flags & FL_PREFIX) && strncmp(entry.name, text, length) == 0;
        if (!prefix && !es_pattern_matches(pattern, entry.name))
            continue;
        found = i;
        if (!action)
            break;
        action(i);
    }
    return found;
}

// An exact name is looked for in the whole list before it may match as anything else: a file named
// "*" is found although every other name matches it.
int x_find(const char *text, unsigned flags, Action action)
{
    if (!text || !*text)
        return DIR_NONE;
    if (strcmp(text, "..") == 0)
        return DIR_PARENT;
    const int exact = flags & FL_EXACT ? x_find_exact(text, flags) : DIR_NONE;
    if (exact == DIR_NONE)
        return x_find_pattern(text, flags, action);
    if (action)
        action(exact);
    return exact;
}

void x_repaint(int index)
{
    if (FlView *view = fl_view())
        view->row_changed(fl_row_of_index(index));
}

} // namespace

bool fl_set_current(int index)
{
    if (index < DIR_NONE)
        index = DIR_NONE;
    if (index >= gDir.count)
        return false;
    const int old = gDir.current;
    if (index == old)
        return true;
    if (old >= 0 && old < gDir.count)
        x_at(old).flags &= static_cast<uint8_t>(~DIR_CURRENT);
    if (index > 0) // entry 0 never carries the flag: it is where the cursor stands anyway
        x_at(index).flags |= DIR_CURRENT;
    gDir.current = index;
    x_repaint(old);
    x_repaint(index);
    fl_access_current();
    return true;
}

int fl_goto_index(int index)
{
    const bool accepted = fl_set_current(index);
    fl_select_set_anchor(gDir.current); // or Shift would extend from where the cursor was before
    FlView *view = fl_view();
    if (view && (index == DIR_PARENT || index == 0))
        view->set_top(0); // with entry 0 the ".." row above it comes into sight
    if (view && accepted && index >= 0)
        view->show_row(fl_row_of_index(index));
    return index;
}

int fl_goto(const char *name, int, unsigned flags)
{
    return fl_goto_index(x_find(name, flags, nullptr));
}

int fl_find(const char *name, unsigned flags) { return x_find(name, flags, nullptr); }

int fl_select(const char *name, unsigned flags) { return x_find(name, flags, fl_select_index); }

int fl_unselect(const char *name, unsigned flags) { return x_find(name, flags, fl_unselect_index); }

int fl_select_transf(const std::vector<const char *> &names)
{
    std::unordered_map<std::string_view, int> indexes; // or every name would cost a pass
    for (int i = 0; i < gDir.count; ++i)
        indexes.emplace(x_at(i).name, i);
    int last = DIR_NONE;
    for (const char *name : names) {
        const auto exact = indexes.find(name);
        const int found = exact == indexes.end() ? fl_select(name, 0) : exact->second;
        fl_select_index(found);
        if (found != DIR_NONE)
            last = found;
    }
    return last;
}

} // namespace tav

// The selection: a flag in each entry and two counts. One entry costs O(1), the whole list one
// pass.
#include "views/fl_select.h"

#include "model/dir.h"
#include "views/fl.h"
#include "views/fl_view.h"

#include <algorithm>
#include <vector>

namespace tav {

namespace {

// The range being pulled. low and high are what it covers now; low > high: nothing.
struct Range {
    bool active;
    int anchor;
    int low, high;
    bool set;                  // what it makes of an entry
    std::vector<uint8_t> base; // what was selected before, by index; empty: nothing was
};

constexpr uint8_t sNotSelected = static_cast<uint8_t>(~DIR_SELECTED);

Range sRange;
int sAnchor = DIR_NONE; // where the next Shift begins

DirEntry &x_at(int index) { return *gDir.entries[static_cast<size_t>(index)]; }
bool x_is_entry(int index) { return index >= 0 && index < gDir.count; }

void x_repaint(int index)
{
    if (FlView *view = fl_view())
        view->row_changed(fl_row_of_index(index));
}

void x_repaint_all()
{
    if (FlView *view = fl_view())
        view->viewport()->update();
}

void x_put(int index, bool selected)
{
    if (selected)
        fl_select_index(index);
    else
        fl_unselect_index(index);
}

bool x_before(int index) { return !sRange.base.empty() && sRange.base[static_cast<size_t>(index)]; }

void x_put_range(int low, int high, bool inside)
{
    for (int i = std::max(low, 0); i <= std::min(high, gDir.count - 1); ++i)
        x_put(i, inside ? sRange.set : x_before(i));
}

} // namespace

void fl_select_index(int index)
{
    if (!x_is_entry(index) || (x_at(index).flags & DIR_SELECTED))
        return;
    x_at(index).flags |= DIR_SELECTED;
    ++gDir.nselected;
    gDir.nseldirs += dir_is_directory(x_at(index));
    x_repaint(index);
    fl_status_changed();
}

void fl_unselect_index(int index)
{
    if (!x_is_entry(index) || !(x_at(index).flags & DIR_SELECTED))
        return;
    x_at(index).flags &= sNotSelected;
    --gDir.nselected;
    gDir.nseldirs -= dir_is_directory(x_at(index));
    x_repaint(index);
    fl_status_changed();
}

void fl_invert_index(int index)
{
    if (x_is_entry(index))
        x_put(index, !(x_at(index).flags & DIR_SELECTED));
}

void fl_select_all()
{
    dir_each(gDir, [](DirEntry &entry, int) { entry.flags |= DIR_SELECTED; });
    gDir.nselected = gDir.count;
    gDir.nseldirs = gDir.ndirs;
    x_repaint_all();
    fl_status_changed();
}

void fl_unselect_all(QWidget *)
{
    if (gDir.nselected > 0)
        dir_each(gDir, [](DirEntry &entry, int) { entry.flags &= sNotSelected; });
    gDir.nselected = 0;
    gDir.nseldirs = 0;
    x_repaint_all();
    fl_status_changed();
}

void fl_invert_all()
{
    dir_each(gDir, [](DirEntry &entry, int) { entry.flags ^= DIR_SELECTED; });
    gDir.nseldirs = gDir.ndirs - gDir.nseldirs;
    gDir.nselected = gDir.count - gDir.nselected;
    x_repaint_all();
    fl_status_changed();
}

void fl_select_only(int index)
{
    fl_unselect_all(nullptr);
    fl_select_index(index);
}

void fl_select_range_begin(int anchor, bool keep, bool set)
{
    sRange = {true, anchor, 0, -1, set, {}};
    if (!keep) {
        fl_unselect_all(nullptr);
        return;
    }
    sRange.base.resize(static_cast<size_t>(gDir.count));
    for (int i = 0; i < gDir.count; ++i)
        sRange.base[static_cast<size_t>(i)] = (x_at(i).flags & DIR_SELECTED) != 0;
}

void fl_select_range_to(int index)
{
    if (!sRange.active || index == DIR_NONE)
        return;
    const int low = std::min(sRange.anchor, index);
    const int high = std::max(sRange.anchor, index);
    if (sRange.low <= sRange.high) {
        x_put_range(sRange.low, std::min(sRange.high, low - 1), false);
        x_put_range(std::max(sRange.low, high + 1), sRange.high, false);
        x_put_range(low, std::min(high, sRange.low - 1), true);
        x_put_range(std::max(low, sRange.high + 1), high, true);
    } else {
        x_put_range(low, high, true);
    }
    sRange.low = low;
    sRange.high = high;
}

void fl_select_range_end() { sRange = {}; }

int fl_select_anchor() { return x_is_entry(sAnchor) || sAnchor == DIR_PARENT ? sAnchor : DIR_NONE; }
void fl_select_set_anchor(int index) { sAnchor = index; }

} // namespace tav

// What the mouse does on the list. One list, one pointer: what a held button does is file-level
// state.
#include "views/fl_mouse.h"

#include "model/dir.h"
#include "views/fl.h"
#include "views/fl_select.h"
#include "views/fl_view.h"

#include <QMouseEvent>
#include <algorithm>

namespace tav {

namespace {

// What the left button does while it is held.
enum class Hold {
    NOTHING,
    ROWS,     // pulls a range of rows
    BAND,     // pulls a band up from empty space
    SELECTED, // was pressed on a selected row: taken out of the list it becomes a drag
};

Hold sHold = Hold::NOTHING;
int sPressedIndex = DIR_NONE; // of the row where it was pressed
bool sPressedCtrl = false;
QPoint sPressedAt; // in pixels of the contents

bool x_is_selected(int index)
{
    return index >= 0 && index < gDir.count &&
           (gDir.entries[static_cast<size_t>(index)]->flags & DIR_SELECTED);
}

QPoint x_contents(const FlView &view, const QPoint &position)
{
    return position + QPoint(view.left(), view.top());
}

void x_press_row(int index, bool ctrl, bool shift)
{
    sHold = Hold::ROWS;
    if (shift) {
        if (fl_select_anchor() == DIR_NONE)
            fl_select_set_anchor(index);
        fl_select_range_begin(fl_select_anchor(), ctrl, true);
    } else if (x_is_selected(index)) {
        sHold = Hold::SELECTED; // what a click means is known at the release
    } else {
        fl_select_range_begin(index, ctrl, true);
        fl_select_set_anchor(index);
    }
    if (sHold == Hold::ROWS)
        fl_select_range_to(index);
    fl_set_current(index);
}

void x_press_empty(bool keep)
{
    sHold = Hold::BAND;
    fl_select_range_begin(gDir.count, keep, true);
    fl_select_range_to(gDir.count);
}

// The index that a position stands for while rows are pulled; gDir.count below the last row.
int x_pulled_index(const FlView &view, const QPoint &position)
{
    const int y = std::clamp(position.y(), 0, std::max(0, view.viewport()->height() - 1));
    if (view.row_at({0, y}) < 0 && sHold == Hold::BAND)
        return gDir.count;
    return fl_row_index(view.row_near(y));
}

void x_pull(FlView &view, const QPoint &position)
{
    const int index = x_pulled_index(view, position);
    fl_select_range_to(index);
    if (index != gDir.count && index != DIR_NONE)
        fl_set_current(index);
    if (sHold == Hold::BAND) {
        const QPoint now = x_contents(view, position);
        view.show_band(QRect(sPressedAt, now).normalized());
    }
    view.set_autoscroll(position.y() < 0 || position.y() >= view.viewport()->height());
}

// Whether the pointer has taken the selection out of the list. A range that is being pulled goes on
// above and below, where it scrolls, and leaves at the sides.
bool x_takes_out(const FlView &view, const QPoint &position)
{
    if (gDir.nselected == 0 || sHold == Hold::BAND || !gFlHooks.drag_start)
        return false;
    const QRect inside = view.viewport()->rect();
    if (sHold == Hold::SELECTED)
        return !inside.contains(position);
    return position.x() < inside.left() || position.x() > inside.right();
}

void x_click_selected()
{
    if (sPressedCtrl)
        fl_unselect_index(sPressedIndex);
    else
        fl_select_only(sPressedIndex);
    fl_select_set_anchor(sPressedIndex);
}

} // namespace

void fl_mouse_press(FlView &view, QMouseEvent &event)
{
    const QPoint position = event.position().toPoint();
    const int row = view.row_at(position);
    if (event.button() != Qt::LeftButton && event.button() != Qt::RightButton) {
        event.ignore();
        return;
    }
    if (fl_is_reading())
        return;
    fl_mouse_cancel(view);
    fl_timer_disable();
    if (event.button() == Qt::RightButton) {
        fl_mouse_menu(row, event.globalPosition().toPoint());
        return;
    }
    sPressedIndex = fl_row_index(row);
    sPressedCtrl = event.modifiers() & Qt::ControlModifier;
    sPressedAt = x_contents(view, position);
    const bool shift = event.modifiers() & Qt::ShiftModifier;
    if (row < 0)
        x_press_empty(sPressedCtrl || shift);
    else
        x_press_row(sPressedIndex, sPressedCtrl, shift);
}

void fl_mouse_move(FlView &view, const QPoint &position)
{
    if (sHold == Hold::NOTHING || fl_is_reading())
        return;
    if (x_takes_out(view, position)) {
        fl_mouse_cancel(view);
        gFlHooks.drag_start();
        return;
    }
    if (sHold != Hold::SELECTED) {
        x_pull(view, position);
        return;
    }
    const int row = view.row_at(position);
    if (row >= 0)
        fl_set_current(fl_row_index(row));
}

void fl_mouse_release(FlView &view, const QMouseEvent &event)
{
    if (event.button() != Qt::LeftButton)
        return;
    const int index = fl_row_index(view.row_at(event.position().toPoint()));
    if (sHold == Hold::SELECTED && index == sPressedIndex && !fl_is_reading())
        x_click_selected();
    fl_mouse_cancel(view);
}

void fl_mouse_double_click(FlView &view, QMouseEvent &event)
{
    const int row = view.row_at(event.position().toPoint());
    if (event.button() != Qt::LeftButton || event.modifiers() != Qt::NoModifier || row < 0) {
        fl_mouse_press(view, event);
        return;
    }
    fl_mouse_cancel(view);
    if (fl_is_reading())
        return;
    fl_timer_disable();
    const int index = fl_row_index(row);
    fl_select_only(index);
    fl_select_set_anchor(index);
    fl_set_current(index);
    fl_open(gDir.current);
}

void fl_mouse_cancel(FlView &view)
{
    if (sHold == Hold::NOTHING)
        return;
    sHold = Hold::NOTHING;
    fl_select_range_end();
    view.show_band({});
    view.set_autoscroll(false);
}

void fl_mouse_menu(int row, const QPoint &global)
{
    if (row >= 0) {
        const int index = fl_row_index(row);
        fl_set_current(index);
        if (!x_is_selected(index))
            fl_unselect_all(nullptr);
        fl_select_index(gDir.current);
        fl_select_set_anchor(gDir.current);
        fl_notify();
    } else {
        fl_unselect_all(nullptr);
    }
    if (gFlHooks.context_menu)
        gFlHooks.context_menu(global);
}

} // namespace tav

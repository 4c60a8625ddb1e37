// Drags over the list. One pointer, one drag: where it is is file-level state.
#include "views/fl_drag.h"

#include "model/dir.h"
#include "views/fl.h"
#include "views/fl_view.h"

#include <QDropEvent>

namespace tav {

bool dnd_active = false;

namespace {

QPoint sPointer; // where the drag is, in the viewport's pixels

int x_index_at(const FlView &view, const QPoint &position)
{
    const int row = view.row_at(position);
    return row < 0 ? DIR_NONE : fl_row_index(row);
}

// How many rows a step of scrolling goes: up (-1) or down (1) near an edge, else 0.
int x_scroll_rows(const FlView &view)
{
    const int margin = view.row_height();
    const int bottom = view.viewport()->height() - margin;
    return sPointer.y() < margin ? -1 : sPointer.y() >= bottom ? 1 : 0;
}

void x_over(FlView &view, QDropEvent &event)
{
    sPointer = event.position().toPoint();
    const int index = x_index_at(view, sPointer);
    const bool target = fl_takes_drop(index);
    const bool taken =
        gFlHooks.drop_accepts && gFlHooks.drop_accepts(event, target ? index : DIR_NONE);
    view.set_drop_row(taken && target ? fl_row_of_index(index) : -1);
    event.setAccepted(taken);
}

void x_gone(FlView &view)
{
    dnd_active = false;
    view.set_drop_row(-1);
    view.set_drag_scroll(false);
}

void x_moved(FlView &view, QDropEvent &event)
{
    if (!dnd_active) {
        event.ignore();
        return;
    }
    x_over(view, event);
    view.set_drag_scroll(x_scroll_rows(view) != 0);
}

void x_entered(FlView &view, QDropEvent &event)
{
    dnd_active = gFlHooks.drop_is_files && gFlHooks.drop_is_files(event);
    event.setAccepted(dnd_active);
    if (!dnd_active)
        return;
    view.setFocus();
    x_moved(view, event);
    event.accept(); // else no move over the list would be told, wherever it goes
}

void x_dropped(FlView &view, QDropEvent &event)
{
    const int index = x_index_at(view, event.position().toPoint());
    x_gone(view);
    if (gFlHooks.drop)
        gFlHooks.drop(event, fl_takes_drop(index) ? index : DIR_NONE);
}

} // namespace

void fl_dnd_cb(FlView &view, QEvent &event)
{
    switch (event.type()) {
    case QEvent::DragEnter:
        x_entered(view, static_cast<QDropEvent &>(event));
        break;
    case QEvent::DragMove:
        x_moved(view, static_cast<QDropEvent &>(event));
        break;
    case QEvent::Drop:
        x_dropped(view, static_cast<QDropEvent &>(event));
        break;
    default:
        x_gone(view);
    }
}

void fl_drag_scroll(FlView &view)
{
    view.set_top(view.top() + x_scroll_rows(view) * view.row_height());
    fl_drag_rows_changed(view);
}

void fl_drag_rows_changed(FlView &view)
{
    // Until the drag moves again nobody can say what may be dropped where.
    if (view.drop_row() != view.row_at(sPointer) || !fl_takes_drop(x_index_at(view, sPointer)))
        view.set_drop_row(-1);
}

} // namespace tav

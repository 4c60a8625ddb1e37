// Drags over the list: which row a drop would hit, and scrolling while the pointer rests near the
// upper or lower edge. What may be dropped where is told by gFlHooks.
#pragma once

class QEvent;

namespace tav {

class FlView;

extern bool dnd_active; // a drag of files is over the list

void fl_dnd_cb(FlView &view, QEvent &event); // it came, moved, left or was dropped
void fl_drag_scroll(FlView &view);           // one step of scrolling
void fl_drag_rows_changed(FlView &view);     // other rows stand where the pointer is

} // namespace tav

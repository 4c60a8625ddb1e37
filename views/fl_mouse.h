// What the mouse does on the list: clicks, drags over rows, the band from empty space, the menu
// button. Positions are the viewport's.
#pragma once

#include <Qt>

class QMouseEvent;
class QPoint;

namespace tav {

class FlView;

void fl_mouse_press(FlView &view, QMouseEvent &event); // ignores buttons that are not the list's
void fl_mouse_move(FlView &view, const QPoint &position);
void fl_mouse_release(FlView &view, const QMouseEvent &event);
void fl_mouse_double_click(FlView &view, QMouseEvent &event);

// Lets go of whatever a held button was doing; the selection stays as it is.
void fl_mouse_cancel(FlView &view);

// Opens the list's menu for what is at the row; -1 for empty space, which unselects all.
void fl_mouse_menu(int row, const QPoint &global);

} // namespace tav

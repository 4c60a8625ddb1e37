// The Edit menu's commands on the whole selection.
#pragma once

class QWidget;

namespace tav {

// Each works on the list, then shows the counts and gives the list the focus. W_CONTINUE.
int em_select_all(QWidget *widget);
int em_unselect_all(QWidget *widget);
int em_invert_selection(QWidget *widget);

} // namespace tav

// The dialog "pattern_dlg": selects or unselects the entries whose names match a pattern. Main
// thread only.
#pragma once

class QWidget;

namespace tav {

constexpr int PATTERN_SELECT = 0;
constexpr int PATTERN_UNSELECT = 1;

extern int gPattern_op; // PATTERN_*; set before the dialog is opened

// Opens the dialog over the main window, or comes back to it.
int pattern_open(QWidget *widget);

} // namespace tav

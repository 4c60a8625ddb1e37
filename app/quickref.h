// The window "quickref": every command with its key, made of the menus' own tables. Main thread
// only.
#pragma once

class QWidget;

namespace tav {

// Opens the window, or comes back to it. It stays open beside the main window, which is not
// blocked.
int help_quickref(QWidget *widget);

} // namespace tav

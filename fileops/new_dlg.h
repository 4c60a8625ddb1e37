// The dialog "new_dlg": a new, empty file or folder in the shown directory. Main thread only.
#pragma once

#include <string>

class QWidget;

namespace tav {

constexpr int NEW_FILE = 1;
constexpr int NEW_FOLDER = -2;
constexpr size_t NEW_NAME_LIMIT = 255; // bytes; a name of so many is refused

extern int gNew_op; // NEW_FILE or NEW_FOLDER; set before the dialog is made

// What the dialog needs of the floors above; app/base.cpp fills it in. Every member may be null.
struct NewHooks {
    void (*refresh)();                     // reads the shown directory again
    void (*show)(const std::string &name); // status bar, focus to the list, selects the new entry
};
extern NewHooks gNewHooks;

// Open the dialog over the main window for a name in the directory that is shown now.
int new_file_setup(QWidget *widget);
int new_dir_setup(QWidget *widget);

} // namespace tav

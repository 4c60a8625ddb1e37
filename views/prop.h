// The properties dialog, "property_dlg": name, owner, group and permissions of the selected
// entries. Main thread only.
#pragma once

#include <functional>
#include <string>
#include <sys/types.h>

class QWidget;

namespace tav {

// What the dialog needs of the floors above; app/base.cpp fills it in. May be null.
struct PropHooks {
    // Finds out what kind of file path is, which may take its time, and hands arrived a description
    // later, on the main thread; or never, when there is none.
    void (*filetype)(const std::string &path, mode_t mode,
                     std::function<void(const std::string &)> arrived);
};
extern PropHooks gPropHooks;

// Opens the dialog over the main window for the entries that are selected now; nothing without any.
// It works on their names from then on, whatever the list does meanwhile.
int prop_open(QWidget *widget);

} // namespace tav

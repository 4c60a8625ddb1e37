// The Hotlist menu: adds and removes the shown directory, sorts, and opens every hotlist directory
// as a cascade of its subdirectories.
#pragma once

#include <string>

class QAction;
class QMenu;
class QWidget;

namespace tav {

// What the menu needs of the floors above; app/base.cpp fills it in. Every member may be null.
struct HmHooks {
    // Adds a directory's cascading item to menu before the action (null: at the end); path is also
    // the label, action is called with the directory chosen in it.
    void (*add_directory)(QMenu *menu, QAction *before, const std::string &path, unsigned flags,
                          int (*action)(const char *path));
};
extern HmHooks gHmHooks;

constexpr unsigned HM_TEST_CASCADE =
    0x1000; // cascade flag: find out at once whether there is a cascade

int hm_setup(QMenu *menu); // dims adding or removing; whenever the menu opens
int hm_add(QWidget *widget);
int hm_remove(QWidget *widget);
int hm_sort(QWidget *widget);
int hm_add_selected(QWidget *widget); // does nothing

// Adds a line, when there is anything to come, and one cascade per hotlist path, before the action
// before.
void hm_populate(QMenu *menu, QAction *before);

// Show a directory that was chosen in the menu. Always W_CONTINUE.
int x_newpath_cb(QWidget *widget, const char *path);
int _new_path(const char *path);

} // namespace tav

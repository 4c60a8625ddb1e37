// The delete dialog: removes the selected entries of the shown directory on the main thread, with a
// progress bar of its own and an Abort button that works meanwhile. Main thread only.
#pragma once

#include <functional>
#include <string>
#include <sys/stat.h>

class QWidget;

namespace tav {

// What the dialog needs of the floors above. Every member may be null, but without walktree a
// directory cannot be deleted.
struct DeleteHooks {
    // Visits a directory and all below it, parents first or last; ends when a visit answers -1.
    int (*walktree)(
        const char *path,
        const std::function<int(const std::string &path, const struct stat &info)> &visit,
        int parent_first);
    void (*block)(QWidget *window, int on); // blocks the main window while the dialog is up
    void (*refresh)();                      // reads the shown directory again
    void (*go_to)(const char *name);        // moves the cursor to an entry
};
extern DeleteHooks gDeleteHooks;

extern int delete_active;      // the loop is running
extern int delete_abort;       // the user asked to stop
extern int delete_folders;     // directories go with their contents
extern std::string delete_msg; // why the loop stopped

// For a copy that has delete_tree clear its way: it is told what failed instead of the user.
extern int copy_active;      // such a copy runs
extern int copy_abort;       // and is to stop
extern std::string copy_msg; // what could not be removed

constexpr size_t DELETE_NAMES_SIZE = 256; // the list of names stays under so many bytes

// Opens the dialog; null without selected entries.
QWidget *delete_setup();

// Removes one file: 0, or -1 with delete_msg.
int delete_one(const std::string &path);

// Visitor of the walk: removes what it is shown, contents before their directory. 0, or -1.
int delete_tree(const std::string &path, const struct stat &info);

} // namespace tav

// The file list: keeps the listing gDir, the rows that show it and the selection in step; changes
// directory, finds entries, sorts by column, routes the list's mouse and keys. Main thread only.
// Indexes are those of gDir.entries; DIR_PARENT is the ".." row, DIR_NONE no entry.
#pragma once

#include "model/dir.h"

#include <QPoint>
#include <QString>
#include <string>
#include <string_view>
#include <vector>

class QWidget;
class QKeyEvent;
class QDropEvent;

namespace tav {

class FlView;

// What the list needs of the floors above; app/base.cpp fills it in. Every member may be null.
struct FlHooks {
    // A key press that the list has. 0 not taken, 1 taken and the typing goes on, -1 taken and it
    // ended.
    int (*key)(const QKeyEvent &event);
    void (*key_echo)();          // shows what was typed so far
    void (*key_clear)();         // forgets it
    bool (*key_active)();        // typing is going on (Escape and Backspace are the list's then)
    void (*open)();              // Enter: open what is selected or current
    void (*run_open)(int index); // runs the open command of every matching association
    bool (*has_open)(int index); // whether any association matches the entry's name
    int (*run_program)(const std::string &path); // starts the listed file itself
    void (*context_menu)(const QPoint &global);  // the list's context menu
    void (*cut_fetch)();                         // before the rows are rebuilt
    bool (*cut_any)();                           // any file is cut
    bool (*is_cut)(const std::string &directory, std::string_view name);
    void (*drag_start)();                           // the pointer left with the selection held
    bool (*drop_is_files)(const QDropEvent &event); // what is dragged over the list are files
    // A drag of files is over the list; index: the entry under it, or DIR_NONE. Whether it may be
    // dropped there; sets the action that the pointer shows.
    bool (*drop_accepts)(QDropEvent &event, int index);
    // It was dropped. index: the directory or ".." (DIR_PARENT) dropped on, DIR_NONE for the list
    // itself.
    void (*drop)(QDropEvent &event, int index);
    void (*status_update)();   // the selection changed (gathered, once per turn)
    void (*history_changed)(); // Back or Forward lead elsewhere now
};
extern FlHooks gFlHooks;

// Search modes of fl_goto, fl_select and fl_unselect.
constexpr unsigned FL_EXACT = 0x01;    // the exact name
constexpr unsigned FL_FILES = 0x02;    // leave directories out
constexpr unsigned FL_BACKWARD = 0x04; // backwards; begins at entry 0, so that is all it sees
constexpr unsigned FL_PREFIX = 0x08;   // names that begin with the text

// Binds the list to its widget and header, made by the main window's form.
void fl_setup();

void fl_set_font();    // takes the list's font from the settings
void fl_refresh();     // reads the shown directory again and rebuilds the rows
void fl_refresh_due(); // the refresh asked for while the listing was being worked on
// The same as fl_refresh, asked for by a signal and not by the person at the keyboard: meanwhile
// fl_is_outside is true, and whoever hears of the change leaves the keyboard where it is.
void fl_refresh_outside();
bool fl_is_outside();
void fl_update();                 // rebuilds the rows without reading
int fl_setspec(const char *spec); // sets the name filter; -1 when unchanged, else 0
int fl_setpath(const char *path); // shows another directory, no history; 0 or -1
int fl_newpath(QWidget *widget, const char *path); // the same, with history
void fl_up();                                      // to the parent
void fl_down();                                    // into the current entry
int fl_open(int index);                            // opens an entry: -1 for DIR_NONE, else 0
bool fl_set_current(
    int index); // makes the entry current; false, changing nothing, at or beyond count
int fl_goto_index(int index); // makes the entry current and shows its row; returns index
int fl_goto(const char *name, int start, unsigned flags); // fl_goto_index of what is found
int fl_find(const char *name, unsigned flags);            // the index found, nothing moves
void fl_select_index(int index);
void fl_unselect_index(int index);
void fl_invert_index(int index);
int fl_select(const char *name, unsigned flags); // every match; the last one's index or DIR_NONE
int fl_unselect(const char *name, unsigned flags);
// Selects every name of a transferred file list: the entry of that name, else what it matches as a
// pattern. The last one's index or DIR_NONE.
int fl_select_transf(const std::vector<const char *> &names);
void fl_select_all();
void fl_unselect_all(QWidget *widget);
void fl_invert_all();
std::string fl_get_fullpath(int index);
void fl_set_column_width(int column, int width); // columns 1 to 7, the desktop's pixels
int fl_get_column_width(int column);             // -1 for a bad column

bool fl_takes_drop(int index); // a directory, or ".."

// Sorts by a column; the one already sorted by turns round. The current entry stays current.
void fl_sort_cb(int column);
void show_sort_method(); // shows the sort image in the header

// Called after every rebuild of the rows and when a right click selects an entry.
void fl_set_notify_cb(void (*notify)());
void fl_notify(); // calls it

void fl_status_changed(); // the selection changed: status_update follows, once for all of this turn
void fl_status_flush();   // now, if it is due

void fl_timer_set();     // starts the time-out of typed keys, from the settings
void fl_timer_disable(); // stops it and forgets the keys; what was echoed of them goes too
void fl_timer_cb();      // the time is out: forgets the keys, shows the status again

bool fl_is_reading(); // a directory is being read: nothing may start another read
FlView *fl_view();    // the widget "filelist"

} // namespace tav

// The toolbars: buttons for what the menus offer most, the path box and the filter box; which bars
// are shown is remembered. Main thread only.
#pragma once

class QMainWindow;
class QWidget;

namespace tav {

// What buttons do that belong to the floors above; app/base.cpp fills it in. A null one dims its
// button.
struct TbHooks {
    int (*cut)(QWidget *widget);
    int (*copy)(QWidget *widget);
    int (*paste)(QWidget *widget);
    int (*new_folder)(QWidget *widget);
    int (*properties)(QWidget *widget);
    int (*terminal)(QWidget *widget);
    int (*erase)(QWidget *widget);
};
extern TbHooks gTbHooks;

// Makes the buttons and boxes in the bars "nav_tb", "clip_tb", "misc_tb", "hotlist_tb", "path_tb"
// and "filter_tb" of the main window. After gTbHooks is filled in, before the histories are
// applied.
void tb_setup();

// Shows and hides the bars as dir/tav.conf says, and remembers dir for tb_save_shown; a null dir is
// no file.
void tb_load_shown(const char *dir);

// Writes into tav.conf which bars are shown. 0, or -1 when there is no file to write.
int tb_save_shown();

// Enables and dims the buttons that cannot always do something: "tb_up", "tb_home" and "tb_add"
// after the shown directory, "tb_back" and "tb_forward" after the history, others after the
// selection.
void tb_update();

int tb_curpath_cb(QWidget *widget);  // the path box was entered or a path picked: goes there
int tb_filespec_cb(QWidget *widget); // the filter box was entered or a filter picked: sets it

// Shows a path, its end if it is long. What a person is typing in the box stays.
void tb_curpath_set_text(const char *text);

// Something was typed at the end of the path box: completes it from the history, and colours it.
int tb_curpath_notify(QWidget *widget);

void tb_curpath_update_appearance(); // blue for a web address, black else (readable on dark, too)

} // namespace tav

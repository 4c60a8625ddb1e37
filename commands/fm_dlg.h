// Menu items that open a dialog for what is selected or shown. Main thread only.
#pragma once

#include <functional>
#include <string>
#include <sys/types.h>

class QWidget;

namespace tav {

int fm_inspect(QWidget *widget);          // properties of the selection
int fm_new_file(QWidget *widget);         // a new file in the shown directory
int fm_new_folder(QWidget *widget);       // a new folder there
int em_select_pattern(QWidget *widget);   // clears the selection, then selects by pattern
int em_unselect_pattern(QWidget *widget); // with a selection: takes away from it by pattern

// What those dialogs need: the description of a file, asked for on a worker (see PropHooks), and
// showing a new entry in the list (see NewHooks).
void fm_filetype(const std::string &path, mode_t mode,
                 std::function<void(const std::string &)> arrived);
void fm_show_new(const std::string &name);

} // namespace tav

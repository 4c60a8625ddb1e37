// The File menu: what its items do and when they are dimmed. A key calls its handler whatever the
// menu last showed, so each handler looks at the selection of that moment itself. Main thread only.
#pragma once

#include <string>
#include <vector>

class QMenu;
class QWidget;

namespace tav {

// The File menu opens: dims what the selection does not allow.
int fm_setup(QMenu *menu);

int fm_new_window(QWidget *widget);
int fm_open(QWidget *widget);
int fm_open_another(QWidget *widget);
int fm_open_with(QWidget *widget);
int fm_edit(QWidget *widget);
int fm_view(QWidget *widget);
int fm_print(QWidget *widget);
int fm_open_pterm(QWidget *widget);

// What the file list asks for: the open command of every association that matches the entry;
// whether there is one; the listed file itself as a program (0, or -1 when it cannot be started).
void fm_run_open(int index);
bool fm_has_open(int index);
int fm_run_program(const std::string &path);

// The names of the selected entries that are no directories, in list order.
std::vector<std::string> fm_selected_files();

} // namespace tav

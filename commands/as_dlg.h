// The dialog "associate_dlg": the list of associations. It works on a copy, which Done makes the
// live table. Main thread only.
#pragma once

#include <string>
#include <vector>

class QWidget;

namespace tav {

// The copy: one text per row, its fields separated by TABs.
extern std::vector<std::string> atmp;
extern int atmp_sel; // the selected row, counting from 1; 0 none

// Opens the dialog; the one that is open already comes to the front.
void as_dlg_open(QWidget *parent);

// Callbacks of its widgets.
int as_setup(QWidget *dialog);
int as_select(QWidget *dialog);
int as_remove(QWidget *dialog);
int as_done(QWidget *dialog);
int as_cancel(QWidget *dialog);

// Shows the copy anew and selects its first row.
void as_dlg_show_rows(QWidget *dialog);

} // namespace tav

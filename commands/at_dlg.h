// The dialog "assoc_type_dlg": one association's pattern and commands. Main thread only.
#pragma once

class QWidget;

namespace tav {

constexpr int AT_NEW = 1;  // apat_mode: a row is added
constexpr int AT_EDIT = 2; // the selected one is changed
extern int apat_mode;

// Opens it over the list's dialog, for a new row or for the selected one.
int at_setup_new(QWidget *associate_dlg);
int at_setup_edit(QWidget *associate_dlg);

} // namespace tav

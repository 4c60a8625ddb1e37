// The Edit menu: its set-up and what its items do. Every handler guards itself, because its key
// works while the item is dimmed, and returns W_CONTINUE. Main thread only.
#pragma once

class QAction;
class QMenu;
class QWidget;

namespace tav {

int em_setup(QMenu *menu);                      // the menu opens: enables and dims its items
void em_populate(QMenu *menu, QAction *before); // adds the destination items

int em_copy(QWidget *widget);
int em_cut(QWidget *widget);
int em_paste(QWidget *widget);
int em_delete(QWidget *widget); // asks first, as the settings say; -1 when nothing is selected
int em_rename(QWidget *widget); // edits the name in its row

int em_select_all(QWidget *widget);
int em_unselect_all(QWidget *widget);
int em_invert_selection(QWidget *widget);
int em_edit_associations(QWidget *widget);

// Shows or takes away the marks of cut files; the clipboard calls it.
void em_marks_changed();

} // namespace tav

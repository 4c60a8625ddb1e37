// The menu on the file list's header: which key the list is sorted by, and whether directories come
// first.
#pragma once

class QMenu;
class QWidget;

namespace tav {

// The menu, made for the state of now; the caller shows and deletes it.
QMenu *fl_header_menu(QWidget *parent);

// Sorts directories before files or not, at once; the settings keep it. The current entry stays
// current.
void fl_set_folders_first(bool on);

} // namespace tav

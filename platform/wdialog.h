// What every dialog of ours shares: it blocks the window it belongs to, lies centred over it, is
// deleted when it is closed, however that happens, and then gives the window back. Main thread
// only.
#pragma once

#include <QDialog>
#include <functional>

class QLineEdit;

namespace tav {

// Shows a dialog made by new. over (may be null) is blocked until the dialog is gone; closed (may
// be empty) runs once after it was unblocked, but not when over went away with the dialog.
void wdialog_open(QDialog *dialog, QWidget *over, std::function<void()> closed);

// Brings a dialog that is up to the front. False when it is not: null, or closed already.
bool wdialog_focus(QDialog *dialog);

// Closes a dialog as done; null is ignored.
void wdialog_done(QDialog *dialog);

// Makes a text field one that is only to be read, and to be seen as such, or an ordinary one again.
void wdialog_read_only(QLineEdit *field, bool on);

} // namespace tav

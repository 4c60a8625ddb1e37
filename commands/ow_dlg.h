// The dialog "open_with": a command of the user's choice for the selected files. Main thread only.
#pragma once

class QWidget;

namespace tav {

// Opens the dialog for the files that are selected now.
void ow_dlg_open(QWidget *parent);

// Runs its command for each of them, then closes it.
int fm_open_with_cb(QWidget *dialog);

} // namespace tav

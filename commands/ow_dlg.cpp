// "Open With". The files are those selected when it opens: a refresh meanwhile takes the selection
// away.
#include "commands/ow_dlg.h"

#include "commands/as.h"
#include "commands/fm.h"
#include "commands/misc.h"
#include "platform/w.h"
#include "ui_open_with.h"

#include <QDialog>
#include <QPointer>

namespace tav {

namespace {

QPointer<QDialog> sDialog;       // null when it is not open
std::vector<std::string> sNames; // the files it is open for

} // namespace

int fm_open_with(QWidget *)
{
    if (!fm_selected_files().empty())
        ow_dlg_open(gBase);
    return W_CONTINUE;
}

void ow_dlg_open(QWidget *parent)
{
    if (sDialog) {
        wfocus(sDialog);
        return;
    }
    sNames = fm_selected_files();
    sDialog = new QDialog(parent);
    sDialog->setAttribute(Qt::WA_DeleteOnClose);
    sDialog->setWindowModality(Qt::WindowModal);
    Ui::open_with form;
    form.setupUi(sDialog);
    sDialog->setMinimumWidth(56 * sDialog->fontMetrics().averageCharWidth());
    QObject::connect(form.ow_open, &QPushButton::clicked, sDialog,
                     [] { fm_open_with_cb(sDialog); });
    QObject::connect(form.ow_cancel, &QPushButton::clicked, sDialog.data(), &QDialog::reject);
    form.ow_command->setFocus();
    sDialog->show();
}

int fm_open_with_cb(QWidget *dialog)
{
    const auto *field = dialog->findChild<QLineEdit *>(QStringLiteral("ow_command"));
    const std::string command = field->text().toStdString();
    for (const std::string &name : sNames)
        file_cmd(command.c_str(), name.c_str());
    dialog->close();
    return W_CONTINUE;
}

} // namespace tav

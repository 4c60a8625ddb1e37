// New file, new folder. The entry is made in the directory that was shown when the dialog opened,
// through a descriptor, because the working directory is the whole program's. A file is made only
// where nothing stands (O_EXCL): what appeared since the check is never truncated.
#include "fileops/new_dlg.h"

#include "model/dir.h"
#include "platform/res.h"
#include "platform/w.h"
#include "platform/wdialog.h"
#include "ui_new_dlg.h"

#include <QPointer>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tav {

int gNew_op = NEW_FILE;
NewHooks gNewHooks;

namespace {

constexpr mode_t FILE_MODE = 0664;
constexpr mode_t FOLDER_MODE = 0755;

struct NewDialog {
    QPointer<QDialog> dialog; // null when it is not open
    Ui::new_dlg form;
    std::string directory; // shown when it was opened
    int op;                // gNew_op at that time
};
NewDialog sNew;

constexpr char EXISTS[] = "File or directory '%s' already exists";

// The directory's descriptor, or -1.
int x_open_directory() { return open(sNew.directory.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC); }

// Anything of that name, a link to nothing included.
bool x_exists(int directory, const std::string &name)
{
    struct stat info;
    return fstatat(directory, name.c_str(), &info, AT_SYMLINK_NOFOLLOW) == 0;
}

// Makes the entry. 0, or the error.
int x_make(int directory, const std::string &name)
{
    if (sNew.op == NEW_FOLDER)
        return mkdirat(directory, name.c_str(), FOLDER_MODE) == 0 ? 0 : errno;
    const int file =
        openat(directory, name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, FILE_MODE);
    if (file < 0)
        return errno;
    close(file);
    return 0;
}

void x_report(int error, const std::string &name)
{
    if (error == EEXIST)
        wreport(gBase, "Error", EXISTS, name.c_str());
    else if (sNew.op == NEW_FOLDER)
        wreport(gBase, "Error", "Unable to create directory '%s'", name.c_str());
    else
        wreport(gBase, "Error", "Unable to create file '%s'\n", name.c_str());
}

// Makes the entry of that name in the directory. 0 when it is there now, else the error, reported.
int x_create_in(int directory, const std::string &name)
{
    if (x_exists(directory, name)) {
        x_report(EEXIST, name);
        return EEXIST;
    }
    const int error = x_make(directory, name);
    if (error == 0)
        return 0;
    x_report(error, name);
    if (sNew.op == NEW_FILE && gNewHooks.refresh)
        gNewHooks.refresh();
    return error;
}

// The dialog's default button. A failure leaves the dialog as it is, so that the name can be
// mended.
void x_create()
{
    const std::string name = sNew.form.new_name->text().toStdString();
    if (name.empty())
        return;
    if (name.size() >= NEW_NAME_LIMIT) {
        wreport(gBase, "Error", "Name too long\n");
        return;
    }
    const int directory = x_open_directory();
    const int error = x_create_in(directory, name);
    if (directory >= 0)
        close(directory);
    if (error != 0)
        return;
    wdialog_done(sNew.dialog);
    if (gNewHooks.refresh)
        gNewHooks.refresh();
    if (gNewHooks.show)
        gNewHooks.show(name.substr(0, name.find('/'))); // what leads there is in the list
}

int new_setup()
{
    if (wdialog_focus(sNew.dialog))
        return W_CONTINUE;
    auto *dialog = new QDialog(gBase);
    sNew.dialog = dialog;
    sNew.op = gNew_op;
    sNew.directory = gDir.path;
    sNew.form.setupUi(dialog);
    const bool file = gNew_op == NEW_FILE;
    dialog->setWindowTitle(QString::fromUtf8(res_text(file ? "txt_003" : "txt_004")));
    sNew.form.new_label->setText(QString::fromUtf8(res_text(file ? "txt_005" : "txt_006")));
    sNew.form.new_name->setMinimumWidth(40 * dialog->fontMetrics().averageCharWidth());
    sNew.form.new_name->setAccessibleName(sNew.form.new_label->text());
    QObject::connect(sNew.form.new_create, &QPushButton::clicked, dialog, [] { x_create(); });
    QObject::connect(sNew.form.new_cancel, &QPushButton::clicked, dialog, &QDialog::reject);
    sNew.form.new_name->setFocus();
    wdialog_open(dialog, gBase, {});
    return W_CONTINUE;
}

} // namespace

int new_file_setup(QWidget *)
{
    gNew_op = NEW_FILE;
    return new_setup();
}

int new_dir_setup(QWidget *)
{
    gNew_op = NEW_FOLDER;
    return new_setup();
}

} // namespace tav

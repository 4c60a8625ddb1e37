// The delete dialog: see delete_dlg.h.
//
// The loop works on a copy of the selection: events are handled between two items, and the listing
// may be read again by one of them. Functions from workers and signals wait until the loop has
// ended.
#include "fileops/delete_dlg.h"

#include "model/dir.h"
#include "model/es.h"
#include "platform/res.h"
#include "platform/shown.h"
#include "platform/ui_gate.h"
#include "platform/w.h"
#include "ui_delete_dlg.h"

#include <QApplication>
#include <QPointer>
#include <QProgressBar>
#include <cerrno>
#include <cstring>
#include <unistd.h>
#include <vector>

namespace tav {

DeleteHooks gDeleteHooks;
int delete_active = 0;
int delete_abort = 0;
int delete_folders = 0;
std::string delete_msg;
int copy_active = 0;
int copy_abort = 0;
std::string copy_msg;

namespace {

// One selected entry.
struct Selected {
    std::string name;
    bool is_dir; // and no link to one
};

std::vector<Selected> sSelected;
std::string sNeighbour;  // the entry that gets the cursor afterwards
QPointer<QLabel> sFiles; // del_files, null when the dialog is gone
QPointer<QDialog> sDialog;

// A text of the database, formatted. Names in it are shown, their line ends too, never obeyed.
std::string x_text(const char *name, const std::string &path, int error = 0)
{
    std::string text = res_text(name);
    for (const std::string &value : {path, std::string(error ? std::strerror(error) : "")}) {
        size_t at = text.find("%s");
        if (at != std::string::npos)
            text.replace(at, 2, shown_text(value).toStdString());
    }
    return text;
}

std::string x_number(const char *name, int number)
{
    std::string text = res_text(name);
    size_t at = text.find("%d");
    if (at != std::string::npos)
        text.replace(at, 2, std::to_string(number));
    return text;
}

void x_show(const std::string &text)
{
    if (sFiles) {
        sFiles->setText(QString::fromStdString(text));
        sFiles->repaint();
    }
}

void errinfo(const std::string &path, const char *call)
{
    const int error = errno;
    const QString text = QStringLiteral("Can't delete '") + shown_text(path) +
                         QStringLiteral("'\n") + QLatin1String(call ? call : "unlink()") +
                         QStringLiteral(": ") + QString::fromLocal8Bit(std::strerror(error)) +
                         QLatin1Char('\n');
    const WQuestion report = {QStringLiteral("Delete"), text, {QStringLiteral("&Close")}, 1, 1};
    wquestion_wait(sDialog, report);
}

// What happens beside the loop between two items.
void x_pending() { QApplication::processEvents(); }

// The entry beside the current one that stays: the first behind it, else the last before it.
std::string x_neighbour()
{
    std::string before;
    for (int i = 0; i < gDir.count; i++) {
        const DirEntry &entry = *gDir.entries[static_cast<size_t>(i)];
        if (entry.flags & DIR_SELECTED)
            continue;
        if (i > gDir.current)
            return entry.name;
        before = entry.name;
    }
    return before;
}

void x_take_selection()
{
    sSelected.clear();
    for (int i = 0; i < gDir.count; i++) {
        const DirEntry &entry = *gDir.entries[static_cast<size_t>(i)];
        if (entry.flags & DIR_SELECTED)
            sSelected.push_back({entry.name, dir_is_directory(entry) && !(entry.flags & DIR_LINK)});
    }
}

// As many names as fit, a long one left out.
std::string x_names()
{
    std::string all;
    for (const Selected &entry : sSelected) {
        const std::string more = (all.empty() ? "" : ", ") + entry.name;
        if (all.size() + more.size() < DELETE_NAMES_SIZE)
            all += more;
    }
    return all;
}

// One entry of the selection: 0, or -1 to stop.
int x_delete(const Selected &entry)
{
    std::string path;
    es_construct_fullpath(path, gDir.path.c_str(), entry.name.c_str());
    x_show(x_text("txt_008", entry.name));
    if (delete_abort)
        return -1;
    if (!entry.is_dir)
        return delete_one(path);
    if (entry.name == ".." || !delete_folders)
        return 0; // kept
    if (!gDeleteHooks.walktree)
        return -1;
    return gDeleteHooks.walktree(path.c_str(), delete_tree, 0);
}

// All of the selection: 0, or -1 when it stopped.
int x_delete_all(QProgressBar *bar)
{
    int done = 0;
    for (const Selected &entry : sSelected) {
        if (x_delete(entry) != 0)
            return -1;
        done++;
        bar->setValue(100 * done / static_cast<int>(sSelected.size()));
        x_pending();
    }
    return 0;
}

QProgressBar *x_add_bar(QDialog *dialog)
{
    auto *bar = new QProgressBar(dialog);
    bar->setObjectName(QStringLiteral("progress_bar"));
    bar->setAccessibleName(QStringLiteral("Progress"));
    bar->setValue(0);
    static_cast<QVBoxLayout *>(dialog->layout())->insertWidget(2, bar);
    bar->show();
    return bar;
}

template <typename T>
T *x_part(const QDialog *dialog, const char *name)
{
    return dialog->findChild<T *>(QString::fromLatin1(name));
}

void delete_yes(QDialog *dialog)
{
    dialog->setWindowTitle(QString::fromUtf8(res_text("txt_015")));
    auto *folders = x_part<QCheckBox>(dialog, "del_folders");
    delete_folders = folders->isChecked();
    folders->setEnabled(false);
    x_part<QWidget>(dialog, "del_question")->hide();
    x_part<QPushButton>(dialog, "del_no")->setText(QString::fromUtf8(res_text("txt_009")));
    x_part<QPushButton>(dialog, "del_yes")->hide();
    delete_abort = 0;
    delete_msg.clear();
    QProgressBar *bar = x_add_bar(dialog);
    delete_active = 1;
    ui_gate_hold();
    x_pending();
    const int result = x_delete_all(bar);
    ui_gate_release();
    delete_active = 0;
    if (result != 0) {
        x_show(delete_msg);
        x_part<QPushButton>(dialog, "del_no")->setText(QString::fromUtf8(res_text("txt_011")));
        delete bar;
        return;
    }
    dialog->done(QDialog::Accepted);
    if (gDeleteHooks.refresh)
        gDeleteHooks.refresh();
    if (gDeleteHooks.go_to && !sNeighbour.empty())
        gDeleteHooks.go_to(sNeighbour.c_str());
}

// The No button, which reads Abort while the loop runs. True when the dialog may close.
bool delete_no()
{
    if (!delete_active)
        return true;
    delete_msg = res_text("txt_014");
    delete_abort = 1;
    return false;
}

// Closing by its frame or Escape is the No button.
class DeleteDialog : public QDialog {
public:
    using QDialog::QDialog;
    void reject() override
    {
        if (!delete_no())
            return;
        const bool stopped = !delete_msg.empty();
        QDialog::reject();
        if (stopped && gDeleteHooks.refresh)
            gDeleteHooks.refresh(); // part of the selection is gone
    }
};

void delete_dlg_destroyed_cb() { sFiles = nullptr; }

int x_count_folders()
{
    int folders = 0;
    for (const Selected &entry : sSelected)
        folders += entry.is_dir;
    return folders;
}

void x_fill(Ui::delete_dlg &form)
{
    form.del_question->setText(
        QString::fromStdString(x_number("txt_007", static_cast<int>(sSelected.size()))));
    form.del_files->setText(shown_text(x_names()));
    const int folders = x_count_folders();
    form.del_folders->setText(QString::fromStdString(x_number("txt_013", folders)));
    form.del_folders->setEnabled(folders > 0);
    form.del_folders->setVisible(folders > 0);
    form.del_yes->setFocus();
}

} // namespace

int delete_one(const std::string &path)
{
    if (::unlink(path.c_str()) == 0)
        return 0;
    delete_msg = x_text("txt_010", path, errno);
    return -1;
}

int delete_tree(const std::string &path, const struct stat &info)
{
    if (delete_abort == 1 || (copy_active && copy_abort == 1))
        return -1;
    x_show(x_text("txt_008", path));
    const bool is_dir = S_ISDIR(info.st_mode);
    if ((is_dir ? ::rmdir(path.c_str()) : ::unlink(path.c_str())) == 0) {
        x_pending();
        return 0;
    }
    (copy_active ? copy_msg : delete_msg) = x_text(is_dir ? "txt_012" : "txt_010", path, errno);
    if (!copy_active)
        errinfo(path, is_dir ? "rmdir()" : "unlink()");
    return -1;
}

QWidget *delete_setup()
{
    x_take_selection();
    if (sSelected.empty() || sDialog)
        return nullptr;
    sNeighbour = x_neighbour();
    delete_abort = delete_active = delete_folders = 0;
    copy_abort = copy_active = 0;
    delete_msg.clear();
    auto *dialog = new DeleteDialog(gBase);
    sDialog = dialog;
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    Ui::delete_dlg form;
    form.setupUi(dialog);
    sFiles = form.del_files;
    dialog->setMinimumWidth(56 * dialog->fontMetrics().averageCharWidth());
    x_fill(form);
    QObject::connect(form.del_yes, &QPushButton::clicked, dialog, [dialog] { delete_yes(dialog); });
    QObject::connect(form.del_no, &QPushButton::clicked, dialog, [dialog] { dialog->reject(); });
    QObject::connect(dialog, &QObject::destroyed, [] { delete_dlg_destroyed_cb(); });
    QObject::connect(dialog, &QDialog::finished, [] {
        if (gDeleteHooks.block)
            gDeleteHooks.block(gBase, 0);
    });
    if (gDeleteHooks.block)
        gDeleteHooks.block(gBase, 1);
    dialog->show();
    wcenter(gBase, dialog);
    return dialog;
}

} // namespace tav

// The dialog for a name that is too long: see long_name.h.
#include "fileops/long_name.h"

#include "platform/shown.h"
#include "platform/w.h"
#include "ui_long_filename_dlg.h"

#include <QDialog>
#include <QLayout>
#include <QPushButton>
#include <QRegularExpressionValidator>
#include <algorithm>
#include <fcntl.h>

namespace tav {
namespace {

constexpr int WIDTH = 76; // characters: the new name is seen whole

std::string x_last_component(const std::string &path)
{
    return path.substr(path.rfind('/') + 1); // npos + 1 is the beginning
}

// As wide as a name wants it, and as high as the lines then are.
void x_size(QDialog *dialog)
{
    const int width = std::max(WIDTH * dialog->fontMetrics().averageCharWidth(),
                               dialog->minimumSizeHint().width());
    dialog->resize(width, dialog->layout()->totalHeightForWidth(width));
}

// Shows the long name and the proposed one, which gets the keyboard. The proposed one.
std::string long_filename_setup(Ui::long_filename_dlg &form, const std::string &source,
                                const std::string &dest)
{
    const std::string oldfile = long_name_cut(x_last_component(source), LONG_NAME_OLD);
    std::string newfile = long_name_cut(x_last_component(dest), LONG_NAME_NEW);
    form.long_filename_oldname->setText(shown_text(oldfile));
    form.long_filename_oldname->setCursorPosition(0);
    const QString shown = shown_text(newfile); // a byte may take more than one character
    const qsizetype most = std::max(static_cast<qsizetype>(LONG_NAME_NEW), shown.size());
    form.long_filename_newname->setMaxLength(static_cast<int>(most));
    form.long_filename_newname->setText(shown);
    form.long_filename_newname->setValidator( // a bare name: a "/" cannot be typed
        new QRegularExpressionValidator(QRegularExpression(QStringLiteral("[^/]*")),
                                        form.long_filename_newname));
    form.long_filename_newname->setFocus();
    return newfile;
}

// Takes the entered name. Only a bare one: what it stands in is the shown directory, which this
// thread alone knows and changes.
bool long_filename_rename(const std::string &entered, FopPlace &place)
{
    const std::string name = long_name_cut(entered, LONG_NAME_NEW);
    if (name.empty() || name == "." || name == ".." || name.find('/') != std::string::npos)
        return false;
    place.dir_fd = ::open(".", O_PATH | O_DIRECTORY | O_CLOEXEC);
    place.name = name;
    return place.dir_fd != -1;
}

} // namespace

std::string long_name_cut(std::string name, size_t limit)
{
    if (name.size() <= limit)
        return name;
    size_t end = limit;
    while (end > 0 && limit - end < 3 && (name[end] & 0xC0) == 0x80)
        end--;
    if ((name[end] & 0xC0) == 0x80)
        end = limit; // no UTF-8
    name.resize(end);
    return name;
}

QWidget *long_name_open(const std::string &source, const std::string &dest, FopPlace &place,
                        const std::function<void(bool)> &answered)
{
    auto *dialog = new QDialog;
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    Ui::long_filename_dlg form;
    form.setupUi(dialog);
    x_size(dialog);
    const std::string proposed = long_filename_setup(form, source, dest);
    QObject::connect(form.long_filename_cancel, &QPushButton::clicked, dialog, &QDialog::reject);
    QObject::connect(form.long_filename_ok, &QPushButton::clicked, dialog,
                     [dialog, field = form.long_filename_newname, proposed, &place] {
                         const std::string name = shown_edited(proposed, field->text());
                         const bool renamed = long_filename_rename(name, place);
                         dialog->done(renamed ? QDialog::Accepted : QDialog::Rejected);
                     });
    QObject::connect(dialog, &QDialog::finished, dialog,
                     [answered](int result) { answered(result == QDialog::Accepted); });
    if (gBase && gBase->isVisible())
        wcenter(gBase, dialog);
    dialog->show();
    dialog->raise();
    dialog->activateWindow();
    return dialog;
}

} // namespace tav

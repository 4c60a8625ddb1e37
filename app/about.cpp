// The About box.
#include "app/about.h"

#include "platform/res.h"
#include "platform/w.h"
#include "platform/wdialog.h"
#include "ui_about_dlg.h"

#include <QPointer>

namespace tav {
namespace {

constexpr char VERSION[] = "- Version 1.13";
constexpr int IMAGE_SIZE = 64;     // logical pixels
constexpr double NAME_SCALE = 1.8; // of the text font

QPointer<QDialog> sDialog; // null when it is not open

} // namespace

int help_about(QWidget *)
{
    if (wdialog_focus(sDialog))
        return W_CONTINUE;
    auto *dialog = new QDialog(gBase);
    sDialog = dialog;
    Ui::about_dlg form;
    form.setupUi(dialog);
    const QSize size(IMAGE_SIZE, IMAGE_SIZE);
    form.about_image->setPixmap(res_image("tav").pixmap(size, dialog->devicePixelRatioF()));
    QFont large = form.about_name->font();
    large.setPointSizeF(large.pointSizeF() * NAME_SCALE);
    large.setBold(true);
    form.about_name->setFont(large);
    form.about_version->setText(QString::fromLatin1(VERSION));
    QObject::connect(form.about_done, &QPushButton::clicked, dialog, &QDialog::accept);
    form.about_done->setFocus();
    wdialog_open(dialog, gBase, {});
    return W_CONTINUE;
}

} // namespace tav

// Select by pattern. The dialog stays open, so that several patterns can be applied one after
// another, and says what the last one did.
#include "views/pattern.h"

#include "app/cl.h"
#include "platform/combo.h"
#include "platform/res.h"
#include "platform/w.h"
#include "platform/wdialog.h"
#include "ui_pattern_dlg.h"
#include "views/fl.h"
#include "views/status.h"

#include <QLineEdit>
#include <QPointer>

namespace tav {

int gPattern_op = PATTERN_SELECT;

namespace {

QPointer<QDialog> sDialog; // null when it is not open
Ui::pattern_dlg sForm;     // valid while the dialog is open

void x_fill_box()
{
    const ClBox box = combo_box(sForm.ppattern);
    gPatternList->flags |= CL_CHANGED; // the box of a new dialog is empty
    cl_apply(gPatternList, box);
}

void x_show_latest()
{
    const ClBox box = combo_box(sForm.ppattern);
    if (gPatternList->count == 1)
        box.select(box.widget, 1); // which cl_text_select refuses
    else
        cl_text_select(box, 1);
}

void x_show_result(int before)
{
    const int changed =
        gPattern_op == PATTERN_SELECT ? gDir.nselected - before : before - gDir.nselected;
    wprintf(sForm.presult, "%d %s %s", changed, changed == 1 ? "entry" : "entries",
            gPattern_op == PATTERN_SELECT ? "selected" : "unselected");
}

void pattern_setup()
{
    const bool select = gPattern_op == PATTERN_SELECT;
    sDialog->setWindowTitle(QString::fromUtf8(res_text(select ? "txt_016" : "txt_017")));
    sForm.pselect->setText(select ? QStringLiteral("&Select") : QStringLiteral("&Unselect"));
    x_fill_box();
    x_show_latest();
    sForm.ppattern->setMinimumWidth(36 * sDialog->fontMetrics().averageCharWidth());
    sForm.ppattern->lineEdit()->setAccessibleName(sForm.ppattern->accessibleName());
    sForm.ppattern->setCompleter(nullptr); // "*" is a pattern, not the beginning of the last one
    sForm.ppattern->setFocus();
}

void pattern_select()
{
    const std::string text = combo_text(sForm.ppattern);
    const int before = gDir.nselected;
    cl_add(gPatternList, text.c_str());
    // "Include Sub-Directories" leaves directories out when it is set. So it has always been, and
    // so the users of this dialog have learnt it.
    const unsigned flags = sForm.pinclude->isChecked() ? FL_FILES : 0;
    if (gPattern_op == PATTERN_SELECT)
        fl_select(text.c_str(), flags);
    else
        fl_unselect(text.c_str(), flags);
    status_bar_update();
    x_fill_box();
    x_show_result(before);
}

void pattern_close()
{
    if (QWidget *list = w_find("filelist"))
        wfocus(list);
}

} // namespace

int pattern_open(QWidget *)
{
    if (wdialog_focus(sDialog))
        return W_CONTINUE;
    auto *dialog = new QDialog(gBase);
    sDialog = dialog;
    sForm.setupUi(dialog);
    pattern_setup();
    QObject::connect(sForm.pselect, &QPushButton::clicked, dialog, [] { pattern_select(); });
    QObject::connect(sForm.pclose, &QPushButton::clicked, dialog, &QDialog::reject);
    wdialog_open(dialog, gBase, [] { pattern_close(); });
    return W_CONTINUE;
}

} // namespace tav

// The list of associations as a person edits it.
#include "commands/as_dlg.h"

#include "commands/as.h"
#include "commands/at_dlg.h"
#include "platform/shown.h"
#include "platform/w.h"
#include "ui_associate_dlg.h"

#include <QDialog>
#include <QHeaderView>
#include <QPointer>
#include <new>

namespace tav {

std::vector<std::string> atmp;
int atmp_sel = 0;

namespace {

QPointer<QDialog> sDialog; // null when it is not open

QTreeWidget *x_list(QWidget *dialog)
{
    return dialog->findChild<QTreeWidget *>(QStringLiteral("as_list"));
}

// Remove and Edit need a row.
void x_enable_buttons(QWidget *dialog, bool on)
{
    for (const char *name : {"as_remove", "as_edit"})
        dialog->findChild<QPushButton *>(QLatin1String(name))->setEnabled(on);
}

QTreeWidgetItem *x_item(const std::string &text, int height)
{
    const Association row = as_split(text);
    auto *item = new QTreeWidgetItem(QStringList{shown_text(row.pattern), shown_text(row.open),
                                                 shown_text(row.view), shown_text(row.edit)});
    item->setSizeHint(0, QSize(0, height));
    return item;
}

// Wide enough to read whole commands, as far as they are of a usual length.
void x_size(QDialog *dialog, QTreeWidget *list)
{
    const int unit = list->fontMetrics().averageCharWidth();
    const int widths[] = {32, 31, 29, 10};
    for (int column = 0; column < 4; column++)
        list->header()->resizeSection(column, widths[column] * unit);
    dialog->resize(110 * unit, 26 * list->fontMetrics().lineSpacing());
}

void x_connect(const Ui::associate_dlg &form, QDialog *dialog)
{
    const auto call = [dialog](QPushButton *button, int (*callback)(QWidget *)) {
        QObject::connect(button, &QPushButton::clicked, dialog,
                         [callback, dialog] { callback(dialog); });
    };
    call(form.as_edit, at_setup_edit);
    call(form.as_remove, as_remove);
    call(form.as_add, at_setup_new);
    call(form.as_cancel, as_cancel);
    call(form.as_done, as_done);
    QObject::connect(form.as_list, &QTreeWidget::itemSelectionChanged, dialog,
                     [dialog] { as_select(dialog); });
    QObject::connect(form.as_list, &QTreeWidget::itemDoubleClicked, dialog,
                     [dialog] { at_setup_edit(dialog); });
    QObject::connect(dialog, &QDialog::rejected, dialog, [dialog] { as_cancel(dialog); });
}

} // namespace

void as_dlg_open(QWidget *parent)
{
    if (sDialog) {
        wfocus(sDialog);
        return;
    }
    sDialog = new QDialog(parent);
    sDialog->setAttribute(Qt::WA_DeleteOnClose);
    sDialog->setWindowModality(Qt::WindowModal);
    Ui::associate_dlg form;
    form.setupUi(sDialog);
    x_size(sDialog, form.as_list);
    as_setup(sDialog);
    x_connect(form, sDialog);
    form.as_list->setFocus();
    sDialog->show();
}

int as_setup(QWidget *dialog)
{
    try {
        atmp.clear();
        for (const Association &row : apat)
            atmp.push_back(as_join(row));
    } catch (const std::bad_alloc &) {
        as_fatal(AS_NO_MEMORY);
    }
    as_dlg_show_rows(dialog);
    return W_CONTINUE;
}

void as_dlg_show_rows(QWidget *dialog)
{
    QTreeWidget *list = x_list(dialog);
    {
        const QSignalBlocker quiet(list);
        list->clear();
        const int height = list->fontMetrics().lineSpacing() * 3 / 2;
        for (const std::string &row : atmp)
            list->addTopLevelItem(x_item(row, height));
        if (!atmp.empty())
            list->setCurrentItem(list->topLevelItem(0));
    }
    atmp_sel = atmp.empty() ? 0 : 1;
    x_enable_buttons(dialog, atmp_sel != 0);
}

int as_select(QWidget *dialog)
{
    QTreeWidget *list = x_list(dialog);
    const QList<QTreeWidgetItem *> selected = list->selectedItems();
    if (selected.isEmpty())
        return W_CONTINUE;
    if (atmp_sel == 0)
        x_enable_buttons(dialog, true);
    atmp_sel = list->indexOfTopLevelItem(selected[0]) + 1;
    return W_CONTINUE;
}

int as_remove(QWidget *dialog)
{
    if (atmp_sel < 1 || static_cast<size_t>(atmp_sel) > atmp.size())
        return W_CONTINUE;
    atmp.erase(atmp.begin() + (atmp_sel - 1));
    as_dlg_show_rows(dialog);
    return W_CONTINUE;
}

int as_done(QWidget *dialog)
{
    apat.clear();
    for (const std::string &row : atmp)
        apat.push_back(as_split(row));
    atmp.clear();
    as_write(); // a table that cannot be written is in use all the same
    static_cast<QDialog *>(dialog)->accept();
    return W_CONTINUE;
}

int as_cancel(QWidget *dialog)
{
    atmp.clear();
    dialog->close();
    return W_CONTINUE;
}

} // namespace tav

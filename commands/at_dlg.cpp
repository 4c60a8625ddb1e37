// One association as a person edits it. A field that is left as it was keeps its bytes, also those
// that cannot be shown.
#include "commands/at_dlg.h"

#include "commands/as.h"
#include "commands/as_dlg.h"
#include "commands/misc_ui.h"
#include "platform/shown.h"
#include "platform/w.h"
#include "ui_assoc_type_dlg.h"

#include <QDialog>

namespace tav {

int apat_mode = AT_NEW;

namespace {

constexpr const char *FIELD_BYTES = "at_bytes"; // property: what a field showed at first, as bytes
constexpr const char *FIELD_SHOWN = "at_shown"; // property: and as text

void x_set(QLineEdit *field, const std::string &bytes)
{
    const QString shown = shown_text(bytes);
    field->setText(shown);
    field->setCursorPosition(0); // a long command shows its program
    field->setProperty(FIELD_BYTES, QByteArray::fromStdString(bytes));
    field->setProperty(FIELD_SHOWN, field->text());
}

std::string x_get(const QDialog *dialog, const char *name)
{
    const auto *field = dialog->findChild<QLineEdit *>(QLatin1String(name));
    if (field->property(FIELD_SHOWN).isValid() &&
        field->text() == field->property(FIELD_SHOWN).toString())
        return field->property(FIELD_BYTES).toByteArray().toStdString();
    return field->text().toStdString();
}

// Replaces the selected row, or appends one.
void x_store(std::string row)
{
    const bool known = atmp_sel >= 1 && static_cast<size_t>(atmp_sel) <= atmp.size();
    if (apat_mode == AT_EDIT && known)
        atmp[static_cast<size_t>(atmp_sel - 1)] = std::move(row);
    else
        atmp.push_back(std::move(row));
}

void at_done(QDialog *dialog, QWidget *associate_dlg)
{
    const std::string pattern = x_get(dialog, "at_pattern");
    const std::string row = pattern + '\t' + x_get(dialog, "at_command") + '\t' +
                            x_get(dialog, "at_view_cmd") + '\t' + x_get(dialog, "at_edit_cmd");
    if (const char *why = as_refuse(pattern, row)) {
        wreport(dialog, "TAV", "%s", why);
        return;
    }
    dialog->accept(); // unblocks the list
    x_store(row);
    as_dlg_show_rows(associate_dlg);
}

QDialog *x_open(QWidget *associate_dlg, const Association &row)
{
    misc_block(associate_dlg, 1);
    auto *dialog = new QDialog(associate_dlg);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    Ui::assoc_type_dlg form;
    form.setupUi(dialog);
    x_set(form.at_pattern, row.pattern);
    x_set(form.at_command, row.open);
    x_set(form.at_view_cmd, row.view);
    x_set(form.at_edit_cmd, row.edit);
    dialog->setMinimumWidth(60 * dialog->fontMetrics().averageCharWidth());
    QObject::connect(form.at_done, &QPushButton::clicked, dialog,
                     [dialog, associate_dlg] { at_done(dialog, associate_dlg); });
    QObject::connect(form.at_cancel, &QPushButton::clicked, dialog, &QDialog::reject);
    QObject::connect(dialog, &QDialog::finished, associate_dlg,
                     [associate_dlg] { misc_block(associate_dlg, 0); });
    form.at_pattern->setFocus();
    dialog->show();
    return dialog;
}

} // namespace

int at_setup_new(QWidget *associate_dlg)
{
    apat_mode = AT_NEW;
    x_open(associate_dlg, {});
    return W_CONTINUE;
}

int at_setup_edit(QWidget *associate_dlg)
{
    if (atmp_sel < 1 || static_cast<size_t>(atmp_sel) > atmp.size())
        return W_CONTINUE;
    apat_mode = AT_EDIT;
    x_open(associate_dlg, as_split(atmp[static_cast<size_t>(atmp_sel - 1)]));
    return W_CONTINUE;
}

} // namespace tav

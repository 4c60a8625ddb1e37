// The quick reference. Nothing is written down here twice: menu rows, accelerators, the list's keys
// and the interpreter's characters come from the tables that the program itself obeys.
#include "app/quickref.h"

#include "app/interp.h"
#include "app/menu.h"
#include "platform/w.h"
#include "platform/wdialog.h"
#include "ui_quickref.h"
#include "views/fl_input.h"

#include <QHeaderView>
#include <QPointer>
#include <QScreen>

namespace tav {
namespace {

constexpr int COLUMNS = 3;     // where, command, key
constexpr int COMMAND = 1;     // the column that takes the room
constexpr int ROWS_SHOWN = 22; // the height asked for
constexpr int CHARACTERS_SHOWN = 72;

QPointer<QDialog> sDialog; // null when it is not open

// A label as it is read: without its mnemonic mark and the dots that announce a dialog.
QString x_plain(const char *label)
{
    QString text = QString::fromUtf8(label);
    text.remove(QLatin1Char('&'));
    if (text.endsWith(QLatin1String("...")))
        text.chop(3);
    return text;
}

void x_add(QTreeWidget *list, const QString &where, const QString &command, const QString &key)
{
    new QTreeWidgetItem(list, {where, command, key});
}

void x_add_menu(QTreeWidget *list, const MenuTable &table)
{
    const QString menu = x_plain(table.title);
    QString submenu;
    for (const MenuRow *row = table.rows; row->level != 0; row++) {
        if (row->level == 1)
            submenu =
                row->kind == MENU_SUBMENU ? x_plain(row->label) + QStringLiteral(" > ") : QString();
        if (row->kind == MENU_COMMAND || row->kind == MENU_TOGGLE)
            x_add(list, menu, submenu + x_plain(row->label),
                  menu_accelerator_text(row->modifiers, row->key));
    }
}

void x_add_list(QTreeWidget *list)
{
    const QString where = QStringLiteral("List");
    for (const FlMove *move = gFlMoves; move->name; move++) {
        for (const FlMoveMode *mode = gFlMoveModes; mode->name; mode++)
            x_add(list, where, QString::asprintf("%s %s", mode->text, move->where),
                  QString::asprintf("%s%s", mode->name, move->name));
    }
    for (const FlKey *key = gFlKeys; key->name; key++)
        x_add(list, where, QString::fromUtf8(key->text), QString::fromUtf8(key->name));
}

void x_fill(QTreeWidget *list)
{
    for (const MenuTable *table = gMenuBar; table->name; table++)
        x_add_menu(list, *table);
    x_add_list(list);
    for (const InterpMode *mode = gInterpModes; mode->text; mode++)
        x_add(list, QStringLiteral("Typing"), QString::fromUtf8(mode->text),
              QString::fromUtf8(mode->keys));
}

bool x_matches(const QTreeWidgetItem *item, const QStringList &words)
{
    const QString text =
        item->text(0) + QLatin1Char(' ') + item->text(1) + QLatin1Char(' ') + item->text(2);
    for (const QString &word : words) {
        if (!text.contains(word, Qt::CaseInsensitive))
            return false;
    }
    return true;
}

// Shows the rows that hold every word.
void x_find(const Ui::quickref &form, const QString &text)
{
    const QStringList words = text.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    bool any = false;
    for (int i = 0; i < form.quickref_list->topLevelItemCount(); i++) {
        QTreeWidgetItem *item = form.quickref_list->topLevelItem(i);
        item->setHidden(!x_matches(item, words));
        any = any || !item->isHidden();
    }
    form.quickref_none->setVisible(!any);
}

void x_shape(QTreeWidget *list)
{
    list->setHeaderLabels(
        {QStringLiteral("Where"), QStringLiteral("Command"), QStringLiteral("Key")});
    list->header()->setStretchLastSection(false);
    for (int column = 0; column < COLUMNS; column++)
        list->header()->setSectionResizeMode(
            column, column == COMMAND ? QHeaderView::Stretch : QHeaderView::ResizeToContents);
}

// As large as is good to read, but no larger than the screen.
void x_size(QDialog *dialog)
{
    const QFontMetrics metrics = dialog->fontMetrics();
    const QSize wanted(CHARACTERS_SHOWN * metrics.averageCharWidth(),
                       (ROWS_SHOWN + 6) * metrics.height());
    dialog->resize(wanted.boundedTo(dialog->screen()->availableGeometry().size() * 9 / 10));
}

} // namespace

int help_quickref(QWidget *)
{
    if (wdialog_focus(sDialog))
        return W_CONTINUE;
    auto *dialog = new QDialog(gBase);
    sDialog = dialog;
    Ui::quickref form;
    form.setupUi(dialog);
    form.quickref_none->hide();
    x_fill(form.quickref_list);
    x_shape(form.quickref_list);
    QObject::connect(form.quickref_find, &QLineEdit::textChanged, dialog,
                     [form](const QString &text) { x_find(form, text); });
    QObject::connect(form.quickref_done, &QPushButton::clicked, dialog, &QDialog::accept);
    QObject::connect(dialog, &QDialog::finished, gBase, [] { gBase->activateWindow(); });
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    x_size(dialog);
    form.quickref_find->setFocus();
    wcenter(gBase, dialog);
    dialog->show();
    return W_CONTINUE;
}

} // namespace tav

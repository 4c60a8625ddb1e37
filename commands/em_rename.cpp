// Editing a name in its row of the list.
#include "commands/em_rename.h"
#include "commands/em.h"
#include "model/dir.h"
#include "platform/shown.h"
#include "platform/w.h"
#include "views/fl.h"
#include "views/fl_header.h"
#include "views/fl_paint.h"
#include "views/fl_view.h"
#include "views/prop_apply.h"

#include <QKeyEvent>
#include <QTimer>
#include <fcntl.h>
#include <unistd.h>

namespace tav {

namespace {

// The entry to be renamed: the one that is selected, else the current one.
int x_entry()
{
    if (gDir.nselected == 1)
        for (int i = 0; i < gDir.count; i++)
            if (gDir.entries[static_cast<size_t>(i)]->flags & DIR_SELECTED)
                return i;
    return gDir.current >= 0 && gDir.current < gDir.count ? gDir.current : DIR_NONE;
}

int x_find_name(const std::string &directory, const std::string &name)
{
    if (gDir.path != directory)
        return DIR_NONE;
    for (int i = 0; i < gDir.count; i++)
        if (name == gDir.entries[static_cast<size_t>(i)]->name)
            return i;
    return DIR_NONE;
}

// The part before the last dot; all of a name without one, or with one only at its beginning.
qsizetype x_stem(const QString &text)
{
    const qsizetype dot = text.lastIndexOf(QLatin1Char('.'));
    return dot > 0 ? dot : text.size();
}

void x_rename(const std::string &directory, const std::string &from, const std::string &to)
{
    std::string message;
    if (em_rename_file(directory, from, to, message) != 0) {
        wreport(gBase, "Error", "%s", message.c_str());
        return;
    }
    if (gDir.path != directory)
        return;
    fl_refresh();
    fl_goto(to.c_str(), 0, FL_EXACT);
}

} // namespace

int em_rename_file(const std::string &directory, const std::string &from, const std::string &to,
                   std::string &message)
{
    PropChange change;
    change.name = to;
    std::string name = from;
    const int fd = open(directory.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    const int result = prop_apply(fd, name, change, message);
    if (fd >= 0)
        close(fd);
    return result;
}

EmRenameField::EmRenameField(std::string directory, std::string name)
    : QLineEdit(fl_view()->viewport()), m_directory(std::move(directory)), m_name(std::move(name))
{
    setObjectName(QStringLiteral("em_rename_field"));
    setAccessibleName(QStringLiteral("New name"));
    const QString text = shown_text(m_name);
    setText(text);
    setSelection(0, static_cast<int>(x_stem(text)));
    connect(this, &QLineEdit::returnPressed, this, &EmRenameField::apply);
    fl_view()->viewport()->installEventFilter(this);
}

bool EmRenameField::place()
{
    const int row = fl_row_of_index(x_find_name(m_directory, m_name));
    if (row < 0)
        return false;
    const FlView &view = *fl_view();
    const QRect column = view.header()->section(FL_COLUMN_NAME).translated(-view.left(), 0);
    const QRect line = view.row_rect(row);
    const int left = column.left() + 2 * FL_ROW_MARGIN + FL_IMAGE_SIZE - textMargins().left() - 4;
    const int wanted = fontMetrics().horizontalAdvance(text()) + 3 * FL_ROW_MARGIN + 8;
    const int width =
        std::max(column.right() - left, std::min(wanted, view.viewport()->width() - left));
    const QRect area(left, line.top(), width, line.height());
    if (area != geometry())
        setGeometry(area);
    return true;
}

// The list repaints whenever its rows or their places change.
bool EmRenameField::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Paint && !m_done && !place())
        QTimer::singleShot(0, this, &EmRenameField::leave);
    return QLineEdit::eventFilter(watched, event);
}

// Return, Escape and the list's plain keys are the field's own, whatever shortcut has them.
bool EmRenameField::event(QEvent *event)
{
    if (event->type() == QEvent::ShortcutOverride) {
        const auto *key = static_cast<QKeyEvent *>(event);
        const bool plain = !(key->modifiers() & (Qt::ControlModifier | Qt::AltModifier));
        if (plain)
            event->accept();
        return plain || QLineEdit::event(event);
    }
    if (event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent *>(event)->key() == Qt::Key_Escape) {
        leave();
        return true;
    }
    return QLineEdit::event(event);
}

void EmRenameField::focusOutEvent(QFocusEvent *event)
{
    QLineEdit::focusOutEvent(event);
    if (event->reason() != Qt::PopupFocusReason && event->reason() != Qt::ActiveWindowFocusReason)
        leave();
}

void EmRenameField::leave()
{
    if (std::exchange(m_done, true))
        return;
    const bool focused = hasFocus();
    hide();
    if (focused)
        fl_view()->setFocus();
    deleteLater();
}

// The message about a failure waits in a loop of its own: the field must be gone before.
void EmRenameField::apply()
{
    const std::string name = shown_edited(m_name, text());
    if (!name.empty() && name != m_name)
        QTimer::singleShot(0, fl_view(), [directory = m_directory, from = m_name, name] {
            x_rename(directory, from, name);
        });
    leave();
}

int em_rename(QWidget *)
{
    const int index = x_entry();
    if (index < 0 || fl_is_reading())
        return W_CONTINUE;
    fl_goto_index(index);
    auto *field = new EmRenameField(gDir.path, gDir.entries[static_cast<size_t>(index)]->name);
    if (!field->place()) {
        delete field;
        return W_CONTINUE;
    }
    field->show();
    field->setFocus();
    return W_CONTINUE;
}

} // namespace tav

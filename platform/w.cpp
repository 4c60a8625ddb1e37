// The small widget utilities: focus, texts, centring, search by class.
#include "platform/w.h"

#include "platform/wformat.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QGroupBox>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QScreen>
#include <cstdarg>

namespace tav {

QWidget *gBase = nullptr;

namespace {

constexpr int MARGIN_FAR = 25;  // from the right and the lower edge of the screen
constexpr int MARGIN_NEAR = 10; // from the left and the upper edge; unequal on purpose

// Puts a text where a widget of this class shows it. "&" is no mnemonic in a message.
void x_set_text(QWidget *widget, const QString &text)
{
    if (widget->isWindow()) {
        widget->setWindowTitle(text);
    } else if (auto *group = qobject_cast<QGroupBox *>(widget)) {
        group->setTitle(QString(text).replace(QLatin1Char('&'), QLatin1String("&&")));
    } else if (auto *label = qobject_cast<QLabel *>(widget)) {
        label->setTextFormat(Qt::PlainText);
        label->setText(text);
    } else if (auto *button = qobject_cast<QAbstractButton *>(widget)) {
        button->setText(QString(text).replace(QLatin1Char('&'), QLatin1String("&&")));
    } else if (auto *box = qobject_cast<QComboBox *>(widget)) {
        box->setEditText(text);
    } else {
        widget->setProperty("text", text);
    }
}

// One axis of centring: from is the first pixel of the screen, to its last.
int x_place(int at, int length, int from, int to)
{
    if (at + length > to)
        at = to - length - MARGIN_FAR;
    if (at < from)
        at = from + MARGIN_NEAR;
    return at;
}

} // namespace

void wfocus(QWidget *widget)
{
    if (!widget)
        return;
    widget->window()->raise();
    widget->window()->activateWindow();
    widget->setFocus(Qt::OtherFocusReason);
}

int wprintf(QWidget *widget, const char *format, ...)
{
    if (!widget)
        return -1;
    va_list arguments;
    va_start(arguments, format);
    const WFormatted text = wformat(format, arguments);
    va_end(arguments);
    x_set_text(widget, text.text);
    return static_cast<int>(text.length);
}

QPoint wcenter_place(const QRect &ref, const QSize &size, const QRect &screen)
{
    const int x = ref.x() + (ref.width() - size.width()) / 2;
    const int y = ref.y() + (ref.height() - size.height()) / 2;
    return {x_place(x, size.width(), screen.left(), screen.right()),
            x_place(y, size.height(), screen.top(), screen.bottom())};
}

void wcenter(const QWidget *ref, QWidget *widget)
{
    if (!widget)
        return;
    if (!widget->testAttribute(Qt::WA_Resized))
        widget->adjustSize();
    const QScreen *screen = ref ? ref->screen() : QGuiApplication::primaryScreen();
    if (!screen)
        return;
    const QRect visible = screen->availableGeometry();
    const QRect over = ref ? ref->window()->frameGeometry() : visible;
    QSize size = widget->frameGeometry().size();
    if (ref && !widget->isVisible()) // has no frame yet, but will have one like the other's
        size = widget->size() + over.size() - ref->window()->size();
    widget->move(wcenter_place(over, size, visible));
}

QWidget *wrecursive_find_child_class(QWidget *widget, const char *class_name)
{
    if (!widget || widget->inherits(class_name))
        return widget;
    for (QObject *child : widget->children()) {
        QWidget *found = wrecursive_find_child_class(qobject_cast<QWidget *>(child), class_name);
        if (found)
            return found;
    }
    return nullptr;
}

} // namespace tav

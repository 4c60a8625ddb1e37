// Blocking of windows. One filter on the application looks at every event while anything is blocked
// and swallows what a user did to a blocked widget. Nothing is disabled: the focus stays where it
// is.
#include "platform/wblock.h"
#include "platform/ui_slice.h"
#include "platform/w.h"

#include <QAction>
#include <QApplication>
#include <QCursor>
#include <QEvent>
#include <QPointer>
#include <QShortcut>
#include <QTimer>
#include <QWindow>
#include <utility>
#include <vector>

namespace tav {
namespace {

constexpr int BUSY_AFTER = 100; // milliseconds until the pointer tells that something is blocked

int sBlocked = 0; // blocked widgets, of all kinds
int sExclusiveDepth =
    0; // boxes that wait in a loop of their own: only message boxes take events then

// What a blocked widget keeps: how often it was blocked, and the pointers that the busy one stands
// for.
class Block : public QObject {
public:
    explicit Block(QWidget *widget) : QObject(widget)
    {
        // What ends before anybody notices needs no busy pointer, and making one is dear.
        QTimer::singleShot(BUSY_AFTER, this, [this, widget] { swap_cursors(widget); });
        sBlocked++;
    }
    ~Block() override
    {
        sBlocked--;
        for (const auto &[widget, saved] : cursors_)
            restore(widget, saved);
    }
    Block(const Block &) = delete;
    Block &operator=(const Block &) = delete;

    int count = 1;

private:
    struct Saved {
        QCursor cursor;
        bool own; // the widget had a pointer of its own
    };

    void swap_cursors(QWidget *blocked)
    {
        swap_cursor(blocked);
        for (QWidget *child : blocked->findChildren<QWidget *>()) {
            if (child->testAttribute(Qt::WA_SetCursor) && !child->isWindow())
                swap_cursor(child);
        }
    }

    void swap_cursor(QWidget *widget)
    {
        cursors_.push_back({widget, {widget->cursor(), widget->testAttribute(Qt::WA_SetCursor)}});
        widget->setCursor(Qt::WaitCursor);
    }

    static void restore(QWidget *widget, const Saved &saved)
    {
        if (!widget)
            return;
        if (saved.own)
            widget->setCursor(saved.cursor);
        else
            widget->unsetCursor();
    }

    std::vector<std::pair<QPointer<QWidget>, Saved>> cursors_;
};

Block *x_block(const QWidget *widget)
{
    for (QObject *child : widget->children()) {
        if (auto *block = dynamic_cast<Block *>(child))
            return block;
    }
    return nullptr;
}

// Whether the widget stands in something blocked; a window of its own above it does not.
bool x_is_inside_blocked(const QWidget *widget)
{
    for (; widget; widget = widget->parentWidget()) {
        if (x_block(widget))
            return true;
        if (widget->isWindow() && widget->windowType() != Qt::Popup)
            return false;
    }
    return false;
}

bool x_is_user_event(QEvent::Type type)
{
    switch (type) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::Wheel:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::ShortcutOverride:
    case QEvent::Shortcut:
    case QEvent::InputMethod:
    case QEvent::ContextMenu:
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::TabletPress:
    case QEvent::TabletMove:
    case QEvent::TabletRelease:
    case QEvent::HoverEnter:
    case QEvent::HoverMove:
        return true;
    default:
        return false;
    }
}

// The widget that a shortcut belongs to.
QWidget *x_shortcut_owner(QObject *object)
{
    if (auto *action = qobject_cast<QAction *>(object)) {
        for (QObject *owner : action->associatedObjects()) {
            if (auto *widget = qobject_cast<QWidget *>(owner))
                return widget;
        }
        return qobject_cast<QWidget *>(action->parent());
    }
    if (auto *shortcut = qobject_cast<QShortcut *>(object))
        return qobject_cast<QWidget *>(shortcut->parent());
    return nullptr;
}

bool x_is_message_box(const QWidget *widget)
{
    return widget && widget->window()->property(WBLOCK_MESSAGE_BOX).toBool();
}

bool x_is_refused(const QWidget *widget)
{
    return x_is_inside_blocked(widget) || (sExclusiveDepth > 0 && !x_is_message_box(widget));
}

class BlockFilter : public QObject {
public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject *object, QEvent *event) override
    {
        if (sBlocked == 0 && sExclusiveDepth == 0)
            return false;
        if (ui_slice_is_active())
            return false; // what comes now is kept for later, when the window may be free again
        const bool close = event->type() == QEvent::Close && event->spontaneous();
        if (!close && !x_is_user_event(event->type()))
            return false;
        QWidget *widget = qobject_cast<QWidget *>(object);
        if (!widget && event->type() == QEvent::Shortcut)
            widget = x_shortcut_owner(object);
        if (!widget)
            return false;
        if (!x_is_refused(widget))
            return false;
        swallow(event);
        return true;
    }

private:
    // A swallowed key counts as taken, so that it becomes no shortcut; a drop or a close as
    // refused.
    static void swallow(QEvent *event)
    {
        switch (event->type()) {
        case QEvent::DragEnter:
        case QEvent::DragMove:
        case QEvent::Drop:
        case QEvent::Close:
            event->ignore();
            break;
        case QEvent::ShortcutOverride: // also reaches the windows above the one that has the keys
            event->setAccepted(x_is_refused(QApplication::focusWidget()));
            break;
        default:
            event->accept();
        }
    }
};

void x_install()
{
    static QPointer<BlockFilter> filter;
    if (filter || !QCoreApplication::instance())
        return;
    filter = new BlockFilter(QCoreApplication::instance());
    QCoreApplication::instance()->installEventFilter(filter);
}

} // namespace

void wblock(QWidget *widget, int block)
{
    if (!widget)
        return;
    Block *state = x_block(widget);
    if (block != 1) {
        if (state && --state->count == 0)
            delete state;
        return;
    }
    x_install();
    if (state)
        state->count++;
    else
        new Block(widget);
}

bool wblock_is_blocked(const QWidget *widget) { return widget && x_is_inside_blocked(widget); }

void wblock_exclusive(bool on)
{
    sExclusiveDepth += on ? 1 : -1;
    x_install();
}

} // namespace tav

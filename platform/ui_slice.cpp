// Slices: a filter on the application takes aside what has to wait, as copies in one queue. The
// queue is emptied one event per turn of the main loop, the next turn being asked for before the
// event is delivered: an event that opens a loop of its own, or begins another long work, keeps the
// order.
#include "platform/ui_slice.h"

#include "platform/ui_gate.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPointer>
#include <QWindow>
#include <deque>
#include <memory>

namespace tav {
namespace {

constexpr size_t KEPT_MOST =
    1000; // events; a key that lies on the keyboard for minutes fills no memory

// An event that waits: for the focus (keys), for an object, or, without an event, the closing of a
// window.
struct Kept {
    QPointer<QObject> object;
    std::unique_ptr<QEvent> event;
};

bool sActive = false; // a work is under way

const QEvent::Type DELIVER = static_cast<QEvent::Type>(QEvent::registerEventType());

class SliceFilter : public QObject {
public:
    using QObject::QObject;

    QPointer<QWidget> allow;
    bool stop = false;          // Escape was pressed
    bool press_dropped = false; // so its release goes the same way

    // Asks for a turn of the main loop that delivers the next kept event.
    void schedule()
    {
        if (!kept_.empty())
            QCoreApplication::postEvent(this, new QEvent(DELIVER), Qt::HighEventPriority);
    }

protected:
    bool eventFilter(QObject *object, QEvent *event) override
    {
        if (!sActive && kept_.empty())
            return false;
        if (!sActive)
            return queue_up(object, event);
        if (is_allowed(object))
            return false;
        switch (event->type()) {
        case QEvent::ShortcutOverride:
            event->accept(); // no shortcut now: it comes back as a key press
            return true;
        case QEvent::KeyPress:
        case QEvent::KeyRelease:
            return take_key(object, static_cast<QKeyEvent *>(event));
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick:
        case QEvent::MouseButtonRelease:
            return take_button(object, static_cast<QMouseEvent *>(event));
        case QEvent::ContextMenu:
            if (static_cast<QContextMenuEvent *>(event)->reason() == QContextMenuEvent::Keyboard)
                keep(object, event);
            return true;
        case QEvent::Close:
            return take_close(object, event);
        default:
            return is_dropped(event);
        }
    }

    void customEvent(QEvent *event) override
    {
        if (event->type() != DELIVER || sActive || kept_.empty())
            return;
        const Kept next = std::move(kept_.front());
        kept_.pop_front();
        schedule();
        deliver(next);
    }

private:
    [[nodiscard]] bool is_allowed(const QObject *object) const
    {
        const auto *widget = qobject_cast<const QWidget *>(object);
        return allow && widget && (widget == allow || allow->isAncestorOf(widget));
    }

    void keep(QObject *object, const QEvent *event)
    {
        if (kept_.size() < KEPT_MOST)
            kept_.push_back({object, std::unique_ptr<QEvent>(event ? event->clone() : nullptr)});
    }

    // After the end, while kept events are still being delivered: a fresh key goes behind them.
    bool queue_up(QObject *object, QEvent *event)
    {
        if (!event->spontaneous())
            return false;
        if (event->type() == QEvent::ShortcutOverride)
            event->accept();
        else if (event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease)
            keep(object, event);
        else
            return false;
        return true;
    }

    bool take_key(QObject *object, QKeyEvent *event)
    {
        event->accept();
        if (event->key() != Qt::Key_Escape)
            keep(object, event);
        else if (event->type() == QEvent::KeyPress)
            stop = true;
        return true;
    }

    // The widget that a mouse event means, whether it comes by its window or by itself.
    static QWidget *pointed_at(QObject *object, const QMouseEvent *event)
    {
        if (object->isWidgetType())
            return static_cast<QWidget *>(object);
        for (QWidget *window : QApplication::topLevelWidgets()) {
            if (window->windowHandle() != object)
                continue;
            QWidget *child = window->childAt(event->position().toPoint());
            return child ? child : window;
        }
        return nullptr;
    }

    static bool is_in_scroll_area(const QWidget *widget)
    {
        for (; widget && !widget->isWindow(); widget = widget->parentWidget()) {
            if (qobject_cast<const QAbstractScrollArea *>(widget))
                return true;
        }
        return false;
    }

    bool take_button(QObject *object, QMouseEvent *event)
    {
        event->accept();
        const bool release = event->type() == QEvent::MouseButtonRelease;
        if (!release)
            press_dropped = is_in_scroll_area(pointed_at(object, event));
        if (!press_dropped)
            keep(object, event);
        if (release)
            press_dropped = false;
        return true;
    }

    bool take_close(QObject *object, QEvent *event)
    {
        if (!event->spontaneous() || !object->isWidgetType())
            return false;
        event->ignore();
        keep(object, nullptr);
        return true;
    }

    static bool is_dropped(QEvent *event)
    {
        switch (event->type()) {
        case QEvent::DragEnter:
        case QEvent::DragMove:
        case QEvent::Drop:
            event->ignore();
            return true;
        case QEvent::MouseMove:
        case QEvent::Wheel:
        case QEvent::TouchBegin:
        case QEvent::TouchUpdate:
        case QEvent::TouchEnd:
        case QEvent::TabletPress:
        case QEvent::TabletMove:
        case QEvent::TabletRelease:
        case QEvent::Shortcut:
            event->accept();
            return true;
        default:
            return false;
        }
    }

    static void deliver(const Kept &kept)
    {
        if (!kept.event) {
            if (auto *window = qobject_cast<QWidget *>(kept.object.data()))
                window->close();
            return;
        }
        QObject *object = kept.object;
        const bool key = kept.event->type() == QEvent::KeyPress ||
                         kept.event->type() == QEvent::KeyRelease ||
                         kept.event->type() == QEvent::ContextMenu;
        if (key && QApplication::focusWidget())
            object = QApplication::focusWidget(); // a key goes where the keys go now
        if (object)
            QCoreApplication::sendEvent(object, kept.event.get());
    }

    std::deque<Kept> kept_;
};

QElapsedTimer sSince; // the end of the last slice

QPointer<SliceFilter> sFilter; // made at the first use, lives as long as the application

SliceFilter *x_filter()
{
    if (!sFilter) {
        sFilter = new SliceFilter;
        sFilter->setParent(QCoreApplication::instance());
        QCoreApplication::instance()->installEventFilter(sFilter);
    }
    return sFilter;
}

} // namespace

bool ui_slice_begin(QWidget *allow)
{
    SliceFilter *filter = x_filter();
    if (sActive)
        return false;
    // In front of every other filter: what a blocked window would swallow is kept instead.
    QCoreApplication::instance()->installEventFilter(filter);
    filter->allow = allow;
    sActive = true;
    filter->stop = false;
    filter->press_dropped = false;
    ui_gate_hold();
    sSince.start();
    return true;
}

bool ui_slice_run()
{
    const SliceFilter *filter = x_filter();
    if (!sActive || sSince.elapsed() < UI_SLICE_EVERY)
        return !filter->stop;
    QCoreApplication::processEvents(QEventLoop::AllEvents, UI_SLICE_LONGEST);
    sSince.start();
    return !filter->stop;
}

void ui_slice_end()
{
    SliceFilter *filter = x_filter();
    if (!sActive)
        return;
    sActive = false;
    filter->allow = nullptr;
    filter->schedule();
    ui_gate_release();
}

bool ui_slice_is_active() { return sActive; }

} // namespace tav

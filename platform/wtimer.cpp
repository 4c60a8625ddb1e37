// Repeating timers that live with a widget: a child object holds the callback and the period and
// arms a single shot after every call, so that the callback may change or stop its own timer.
#include "platform/w.h"

#include <QPointer>
#include <QTimer>

namespace tav {
namespace {

class WTimer : public QObject {
public:
    explicit WTimer(QObject *widget) : QObject(widget)
    {
        timer.setSingleShot(true);
        connect(&timer, &QTimer::timeout, this, [this] { expired(); });
    }

    void arm()
    {
        if (period == 0)
            timer.stop();
        else
            timer.start(static_cast<int>(std::min(period, 0x7FFFFFFFU)));
    }

    void expired()
    {
        if (period == 0 || !callback)
            return;
        const QPointer<WTimer> alive(this); // the callback may delete its widget
        const WTimerFunc call = callback;   // or replace itself
        call(parent());
        if (alive)
            arm();
    }

    WTimerFunc callback;
    unsigned period = 0; // ms, 0: stopped

private:
    QTimer timer;
};

WTimer *x_timer(const QObject *widget)
{
    if (!widget)
        return nullptr;
    for (QObject *child : widget->children()) {
        if (auto *timer = dynamic_cast<WTimer *>(child))
            return timer;
    }
    return nullptr;
}

} // namespace

void wtimer_attach(QObject *widget, unsigned period, WTimerFunc callback)
{
    if (!widget)
        return;
    WTimer *timer = x_timer(widget);
    if (!timer)
        timer = new WTimer(widget);
    timer->callback = std::move(callback);
    timer->period = period;
    timer->arm();
}

void wtimer_trigger(QObject *widget)
{
    const WTimer *timer = x_timer(widget);
    if (!timer || !timer->callback)
        return;
    const WTimerFunc call = timer->callback;
    call(widget);
}

void wtimer_detach(QObject *widget)
{
    WTimer *timer = x_timer(widget);
    if (!timer)
        return;
    timer->period = 0;
    timer->arm();
}

} // namespace tav

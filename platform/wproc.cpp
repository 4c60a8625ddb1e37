// Work procedures that live with a widget: a timer without delay calls the work whenever the main
// loop has nothing else to do.
#include "platform/w.h"

#include <QPointer>
#include <QTimer>

namespace tav {
namespace {

class WProc : public QObject {
public:
    explicit WProc(QObject *widget) : QObject(widget)
    {
        timer.setInterval(0);
        connect(&timer, &QTimer::timeout, this, [this] { step(); });
    }

    void step()
    {
        const QPointer<WProc> alive(this);      // the work may delete its widget
        const std::function<int()> call = work; // or replace itself
        const unsigned started = starts;
        const int result = call ? call() : W_END;
        if (alive && result == W_END && starts == started)
            timer.stop();
    }

    void start(std::function<int()> new_work)
    {
        work = std::move(new_work);
        starts++;
        timer.start();
    }

    void stop() { timer.stop(); }

private:
    QTimer timer;
    std::function<int()> work;
    unsigned starts = 0; // tells the work that ends from the work that took its place
};

WProc *x_proc(const QObject *widget)
{
    if (!widget)
        return nullptr;
    for (QObject *child : widget->children()) {
        if (auto *proc = dynamic_cast<WProc *>(child))
            return proc;
    }
    return nullptr;
}

} // namespace

void wproc_attach(QObject *widget, std::function<int()> work)
{
    if (!widget)
        return;
    WProc *proc = x_proc(widget);
    if (!proc)
        proc = new WProc(widget);
    proc->start(std::move(work));
}

void wproc_finished(QObject *widget) { wproc_detach(widget); }

void wproc_detach(QObject *widget)
{
    if (WProc *proc = x_proc(widget))
        proc->stop();
}

} // namespace tav

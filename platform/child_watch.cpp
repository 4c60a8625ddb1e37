// A descriptor of the child becomes readable when it ends; where the system has none, a slow timer
// looks.
#include "platform/child_watch.h"

#include "platform/child.h"
#include "platform/ui_gate.h"

#include <QCoreApplication>
#include <QSocketNotifier>
#include <QTimer>
#include <sys/syscall.h>
#include <unistd.h>

namespace tav {

namespace {

constexpr int SLOW_MS = 500; // between looks where there is no descriptor

void x_look()
{
    static bool waiting = false; // a further look is due
    if (child_reap() == 0 || waiting)
        return;
    waiting = true;
    QTimer::singleShot(SLOW_MS, [] {
        waiting = false;
        x_look();
    });
}

void x_watch(pid_t pid)
{
    const auto descriptor = static_cast<int>(syscall(SYS_pidfd_open, pid, 0));
    if (descriptor < 0) {
        x_look();
        return;
    }
    auto *notifier = new QSocketNotifier(descriptor, QSocketNotifier::Read, qApp);
    QObject::connect(notifier, &QSocketNotifier::activated, notifier, [notifier, descriptor] {
        notifier->setEnabled(false);
        notifier->deleteLater();
        close(descriptor);
        child_reap();
    });
}

} // namespace

void child_watch_install()
{
    gChildKept = [](pid_t pid) { ui_post([pid] { x_watch(pid); }); };
}

} // namespace tav

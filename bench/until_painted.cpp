// Linked with the program's own main: the whole of tav, which ends when the complete list has been
// painted, after saying how much memory it takes, how many entries it lists and its window's size.
#include "model/dir.h"
#include "platform/w.h"
#include "views/fl.h"
#include "views/fl_view.h"

#include <QCoreApplication>
#include <QEvent>
#include <QTimer>
#include <QWindow>
#include <cstdio>
#include <cstdlib>
#include <unistd.h>

namespace {

using namespace tav;

// Bytes of this process that are in memory.
long x_resident()
{
    long all = 0;
    long resident = 0;
    FILE *file = std::fopen("/proc/self/statm", "r");
    if (file == nullptr || std::fscanf(file, "%ld %ld", &all, &resident) != 2)
        _exit(EXIT_FAILURE);
    std::fclose(file);
    return resident * sysconf(_SC_PAGESIZE);
}

void x_end()
{
    std::printf("%ld %d %d %d\n", x_resident(), gDir.count, gBase->width(), gBase->height());
    std::fflush(stdout);
    _exit(EXIT_SUCCESS);
}

class EndAfterPaint : public QObject {
protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Paint && gBase->windowHandle()->isExposed() &&
            !gDir.path.empty() && !fl_is_reading() && watched == fl_view()->viewport())
            QTimer::singleShot(0, x_end);
        return false;
    }
};

void x_watch() { qApp->installEventFilter(new EndAfterPaint); }

} // namespace

Q_COREAPP_STARTUP_FUNCTION(x_watch)

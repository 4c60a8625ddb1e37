// The file list on large directories: reading again, selecting, painting, and how long the window
// keeps a person waiting while a directory is read. Offscreen, real directories, the list's own
// calls.
#include "app/config.h"
#include "bench.h"
#include "model/dir.h"
#include "platform/ui_gate.h"
#include "platform/w.h"
#include "views/fl.h"
#include "views/fl_view.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QLabel>
#include <QTimer>
#include <QVBoxLayout>
#include <algorithm>
#include <fnmatch.h>

namespace tav {

namespace {

constexpr int sLarge = 100000;
constexpr int sHuge = 1000000;
constexpr double sPatience = 0.050; // seconds that a person may wait for a sign of life
const char sPattern[] = "*7*";

void x_show(int count)
{
    const std::string &path = bench_directory({count}, BenchPlace::Memory);
    if (gDir.path != path)
        fl_setpath(path.c_str());
    QCoreApplication::processEvents();
}

void x_paint() { fl_view()->viewport()->repaint(); }

// The measure of all selecting: one pass over the entries with the library's own matcher.
void x_fnmatch_pass()
{
    int matched = 0;
    for (int i = 0; i < gDir.count; ++i)
        matched += fnmatch(sPattern, gDir.entries[static_cast<size_t>(i)]->name, 0) == 0;
    bench_keep(matched);
}

void x_unselect()
{
    fl_unselect_all(nullptr);
    QCoreApplication::processEvents();
}

void x_bench_refresh()
{
    const std::string &path = bench_directory({sLarge}, BenchPlace::Memory);
    x_show(sLarge);
    bench_compare({"fl_refresh_100000", 1.6}, {{}, [] { fl_refresh(); }, {}},
                  {{}, [&] { bench_getdents_loop(path.c_str()); }, {}});
    const auto refresh = [](int count) {
        x_show(count);
        return bench_seconds([] { fl_refresh(); });
    };
    bench_compare_values(
        {"fl_refresh_growth_10x", 12}, [&] { return refresh(sLarge); },
        [&] { return refresh(sLarge / 10); });
}

void x_bench_select()
{
    x_show(sLarge);
    const BenchSide pass = {{}, x_fnmatch_pass, {}};
    bench_compare({"fl_select_pattern_100000", 2}, {x_unselect, [] { fl_select(sPattern, 0); }, {}},
                  pass);
    bench_compare({"fl_invert_100000", 2}, {{}, fl_invert_all, {}}, pass);
    bench_compare({"fl_select_second_100000", 2},
                  {x_unselect,
                   [] {
                       for (int i = 0; i < gDir.count; i += 2)
                           fl_select_index(i);
                   },
                   {}},
                  pass);
}

void x_bench_paint()
{
    x_show(sLarge);
    bench_compare({"fl_repaint_selected_100000", 1.25, 21}, {fl_select_all, x_paint, {}},
                  {x_unselect, x_paint, {}});
}

// A directory that is read while somebody watches: how late the worst repaint came, and how late
// the reading ended after Escape. Seconds.
struct Watched {
    double repaint = 0;
    double escape = 0;
};

class Watcher : public QObject {
public:
    explicit Watcher(Watched &watched) : m_watched(watched)
    {
        fl_view()->viewport()->installEventFilter(this);
        m_since.start();
        connect(&m_timer, &QTimer::timeout, this, [this] {
            m_watched.repaint = std::max(m_watched.repaint, m_since.nsecsElapsed() * 1e-9);
            fl_view()->viewport()->update();
        });
        m_timer.start(0);
    }

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Paint)
            m_since.start();
        return false;
    }

private:
    Watched &m_watched;
    QTimer m_timer;
    QElapsedTimer m_since; // the last repaint
};

double x_watch_repaints()
{
    Watched watched;
    Watcher watcher(watched);
    fl_refresh();
    QCoreApplication::processEvents();
    return watched.repaint;
}

double x_watch_escape()
{
    QElapsedTimer pressed;
    QTimer::singleShot(200, fl_view(), [&pressed] {
        pressed.start();
        QCoreApplication::postEvent(
            fl_view(), new QKeyEvent(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier));
    });
    fl_refresh();
    return pressed.isValid() ? pressed.nsecsElapsed() * 1e-9 : 0;
}

void x_bench_huge()
{
    if (!bench_large() || !bench_wants("fl_watch"))
        return;
    x_show(sHuge);
    bench_report({"fl_watch_repaint_1000000", 1}, x_watch_repaints(), sPatience);
    bench_report({"fl_watch_escape_1000000", 1}, x_watch_escape(), sPatience);
}

} // namespace

} // namespace tav

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    tav::bench_start(argc, argv);
    tav::ui_gate_open();
    QWidget window;
    auto *layout = new QVBoxLayout(&window);
    layout->addWidget(new tav::FlView(&window));
    for (const char *name : {"status1", "status2"}) {
        auto *label = new QLabel(&window);
        label->setObjectName(QLatin1String(name));
        label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed); // as in the status bar
        layout->addWidget(label);
    }
    tav::gBase = &window;
    tav::gDir.filespec.assign(1, '*');
    tav::fl_setup();
    window.resize(900, 700);
    window.show();
    QCoreApplication::processEvents();
    tav::x_bench_refresh();
    tav::x_bench_select();
    tav::x_bench_paint();
    tav::x_bench_huge();
    tav::gBase = nullptr;
    return 0;
}

// Reading and sorting the directory while the window stays alive. The reader asks after every name
// whether it may go on; mostly that is one look at a clock. When a slice is due the main loop runs
// for a moment (platform/ui_slice keeps keys and clicks for later), and a read that takes long
// shows its rows.
#include "views/fl_read.h"

#include "platform/ui_slice.h"
#include "platform/w.h"
#include "views/fl.h"
#include "views/fl_sort.h"
#include "views/fl_view.h"

#include <ctime>

namespace tav {

namespace {

constexpr unsigned sProgressPeriod = 300; // milliseconds between two figures in the status bar
constexpr long sShowAfter = 400; // milliseconds until rows are shown; sooner they would flicker
constexpr long sShowEvery = 200; // milliseconds between two repaints of them

bool sReading = false;
long sShow = 0; // when the rows are shown next

// A clock of a few milliseconds' grain, which costs next to nothing.
long x_now()
{
    timespec now;
    clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
    return now.tv_sec * 1000 + now.tv_nsec / 1000000;
}

bool x_pending()
{
    const long now = x_now();
    FlView *view = fl_view();
    if (sReading && view && now >= sShow) {
        sShow = now + sShowEvery;
        view->rows_changed();
    }
    return ui_slice_run();
}

void x_show_status(const char *text) { wprintf(w_find("status1"), "%s", text); }
void x_show_progress(const char *text) { wprintf(w_find("status2"), "%s", text); }

void x_progress_start(void (*tick)())
{
    if (QWidget *status = w_find("status2"))
        wtimer_attach(status, sProgressPeriod, [tick](QObject *) { tick(); });
}

void x_progress_end()
{
    QWidget *status = w_find("status2");
    if (!status)
        return;
    wtimer_trigger(status);
    wtimer_detach(status);
}

// While one stands the listing is being worked on.
class Slices {
public:
    Slices() : m_begun(ui_slice_begin())
    {
        sReading = true;
        sShow = x_now() + sShowAfter;
    }
    ~Slices()
    {
        sReading = false;
        if (m_begun)
            ui_slice_end();
    }
    Slices(const Slices &) = delete;
    Slices &operator=(const Slices &) = delete;

private:
    bool m_begun;
};

} // namespace

bool fl_is_reading() { return sReading; }

void fl_read_setup()
{
    if (!gDirHooks.status)
        gDirHooks.status = x_show_status;
    if (!gDirHooks.progress_show)
        gDirHooks.progress_show = x_show_progress;
    if (!gDirHooks.progress_start)
        gDirHooks.progress_start = x_progress_start;
    if (!gDirHooks.progress_end)
        gDirHooks.progress_end = x_progress_end;
    if (!gDirHooks.pending)
        gDirHooks.pending = x_pending;
}

int fl_read()
{
    const Slices slices;
    return dir_read(gDir, fl_sort_function(), fl_sort_order());
}

void fl_read_sort()
{
    const Slices slices;
    dir_sort(gDir, fl_sort_function(), fl_sort_order());
}

} // namespace tav

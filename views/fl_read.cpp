// Reading the directory while the window stays alive.
#include "views/fl_read.h"

#include "platform/w.h"
#include "views/fl.h"
#include "views/fl_sort.h"
#include "views/fl_view.h"

namespace tav {

namespace {

constexpr unsigned sProgressPeriod = 300; // milliseconds between two figures in the status bar

bool sReading = false;

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
}

int fl_read()
{
    sReading = true;
    const int result = dir_read(gDir, fl_sort_function(), fl_sort_order());
    sReading = false;
    return result;
}

} // namespace tav

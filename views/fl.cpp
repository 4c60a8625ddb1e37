// The file list as a whole: set-up, reading the directory, rebuilding the rows, telling others.
#include "views/fl.h"

#include "app/config.h"
#include "platform/fonts.h"
#include "platform/res.h"
#include "platform/w.h"
#include "views/fl_access.h"
#include "views/fl_header.h"
#include "views/fl_mouse.h"
#include "views/fl_read.h"
#include "views/fl_select.h"
#include "views/fl_sort.h"
#include "views/fl_view.h"

#include <QCoreApplication>
#include <QPointer>
#include <QTimer>
#include <algorithm>

namespace tav {

FlHooks gFlHooks{};

namespace {

constexpr int sTimeoutLimit = 3600 * 1000; // milliseconds that typed keys are kept at most

QPointer<FlView> sView;
QPointer<QObject> sTimer; // "ftimer", a child of the view
void (*sNotify_f)() = nullptr;
std::string sLastPath;   // that the last refresh showed
bool sStatusDue = false; // the selection changed since status_update
bool sOutside = false;   // this refresh was asked for from outside

// A refresh that was asked for while a directory was being read.
enum class Due { NOTHING, OUTSIDE, INSIDE };
Due sRefreshDue = Due::NOTHING;

void x_status(const char *text)
{
    if (gDirHooks.status)
        gDirHooks.status(text);
}

const DirEntry *x_first_selected()
{
    for (int i = 0; i < gDir.count && gDir.nselected > 0; ++i)
        if (gDir.entries[static_cast<size_t>(i)]->flags & DIR_SELECTED)
            return gDir.entries[static_cast<size_t>(i)];
    return nullptr;
}

// The name that the cursor goes back to when the same directory is read again.
std::string x_remember()
{
    const DirEntry *first = x_first_selected();
    if (first && gDir.has_path && gDir.path == sLastPath)
        return first->name;
    sLastPath = gDir.has_path ? gDir.path : "";
    return {};
}

void x_read_and_show()
{
    const std::string cursor = x_remember();
    const int top = sView ? sView->top() : 0;
    if (sView)
        fl_mouse_cancel(*sView);
    wblock(gBase, 1);
    fl_timer_disable();
    fl_row_latch();
    fl_read();
    gDir.nselected = 0;
    gDir.nseldirs = 0;
    if (sView) {
        sView->rows_changed();
        sView->set_top(top); // a long read has shown its first rows
    }
    fl_update();
    if (!cursor.empty())
        fl_goto(cursor.c_str(), 0, FL_EXACT);
    else
        fl_goto_index(0);
    wblock(gBase, 0);
    x_status("");
}

} // namespace

FlView *fl_view() { return sView; }

void fl_setup()
{
    sView = w_find<FlView>("filelist");
    if (!sView)
        return;
    for (int image = 0; image < FL_IMAGES; ++image)
        sView->set_image(image, res_image(fl_row_image_name(image)));
    fl_set_font();
    if (!sTimer) {
        sTimer = new QObject(sView);
        sTimer->setObjectName(QLatin1String("ftimer"));
    }
    fl_read_setup();
    show_sort_method();
}

void fl_set_font()
{
    if (sView)
        sView->setFont(fonts_from_name(gConfig->list_font, sizeof gConfig->list_font));
}

void fl_refresh()
{
    if (fl_is_reading()) { // once afterwards is enough, however often it is asked for
        sRefreshDue = sOutside && sRefreshDue != Due::INSIDE ? Due::OUTSIDE : Due::INSIDE;
        return;
    }
    x_read_and_show();
    fl_refresh_due();
}

void fl_refresh_due()
{
    const bool outside = sOutside;
    while (sRefreshDue != Due::NOTHING) {
        sOutside = sRefreshDue == Due::OUTSIDE;
        sRefreshDue = Due::NOTHING;
        x_read_and_show();
    }
    sOutside = outside;
}

void fl_refresh_outside()
{
    const bool before = sOutside;
    sOutside = true;
    fl_refresh();
    sOutside = before;
}

bool fl_is_outside() { return sOutside; }

void fl_update()
{
    const int top = sView ? sView->top() : 0;
    if (gFlHooks.cut_fetch)
        gFlHooks.cut_fetch();
    x_status("Displaying Directory");
    fl_row_latch();
    dir_each(gDir, [](DirEntry &entry, int index) { entry.item = fl_row_of_index(index); });
    fl_select_range_end();
    fl_select_set_anchor(gDir.current);
    fl_access_rows_changed();
    if (sView) {
        sView->rows_changed();
        sView->set_top(top);
    }
    fl_notify();
}

int fl_setspec(const char *spec)
{
    const std::string wanted = spec && *spec ? spec : "*";
    if (fl_is_reading() || wanted == gDir.filespec)
        return -1;
    gDir.filespec = wanted;
    fl_refresh();
    return 0;
}

void fl_set_notify_cb(void (*notify)()) { sNotify_f = notify; }

void fl_notify()
{
    if (sNotify_f)
        sNotify_f();
}

void fl_status_changed()
{
    if (sStatusDue)
        return;
    sStatusDue = true;
    QTimer::singleShot(0, qApp, [] { fl_status_flush(); });
}

void fl_status_flush()
{
    if (!sStatusDue)
        return;
    sStatusDue = false;
    if (gFlHooks.status_update)
        gFlHooks.status_update();
}

void fl_timer_set()
{
    const int timeout = std::clamp(gConfig->key_timeout, 0, sTimeoutLimit);
    if (sTimer)
        wtimer_attach(sTimer, static_cast<unsigned>(timeout), [](QObject *) { fl_timer_cb(); });
}

void fl_timer_disable()
{
    if (sTimer)
        wtimer_detach(sTimer);
    if (gFlHooks.key_active && gFlHooks.key_active())
        fl_status_changed(); // else the echo of keys that are forgotten would stay
    if (gFlHooks.key_clear)
        gFlHooks.key_clear();
}

void fl_timer_cb()
{
    fl_timer_disable();
    sStatusDue = true;
    fl_status_flush();
}

void fl_set_column_width(int column, int width)
{
    if (FlView *view = fl_view())
        view->header()->set_width(column, width);
}

int fl_get_column_width(int column)
{
    const FlView *view = fl_view();
    return view ? view->header()->width_of(column) : -1;
}

} // namespace tav

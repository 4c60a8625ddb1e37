// The table of slots and the program's end with it: see slot.h.
#include "fileops/slot.h"

#include "fileops/slot_ask.h"
#include "fileops/slot_wait.h"
#include "fileops/slot_window.h"
#include "platform/child.h"
#include "platform/namesake.h"
#include "platform/w.h"

#include <QAbstractButton>
#include <QCoreApplication>
#include <QPointer>
#include <cerrno>
#include <list>
#include <mutex>
#include <vector>

namespace tav {

int base_window_closed = 0;

namespace {

// One slot. pane and shown are the main thread's; removed and job are under sMutex.
struct Entry {
    SlotWidgets widgets{};
    int removed = 0;       // the job has ended
    FileOp *job = nullptr; // null before it starts and after it was marked
    SlotShown shown;
};

std::mutex sMutex;       // over removed and job of every entry, and over the table's changes
std::list<Entry> sSlots; // the newest first

Entry *x_find(const void *pane)
{
    for (Entry &entry : sSlots) {
        if (entry.widgets.slot == pane)
            return &entry;
    }
    return nullptr;
}

void x_exit() { QCoreApplication::exit(0); }

// Every instance, this one too, re-reads its directory. Nobody waits for the program.
void x_refresh()
{
    ChildStart start;
    start.program = "/bin/sh";
    start.argv = {"sh", "-c", "slay -f -s SIGWINCH tav >/dev/null 2>&1"};
    const std::string path = namesake_path("slay");
    if (!path.empty())
        start.set_env.push_back("PATH=" + path);
    pid_t pid = child_start(start);
    if (pid != -1)
        child_keep(pid, {});
}

void x_call(void (*hook)(), void (*usual)()) { hook ? hook() : usual(); }

void x_end_program() { x_call(gSlotHooks.exit, x_exit); }

// The pane that a button of a slot stands in.
QWidget *x_pane(QWidget *button) { return button ? button->parentWidget() : nullptr; }

// While it is asked whether the job is to end, that alone decides whether it goes on.
void x_enable_buttons(QWidget *pane, bool on)
{
    for (const char *name : {"slot_pause", "cancel_button"})
        pane->findChild<QWidget *>(QString::fromLatin1(name))->setEnabled(on);
}

} // namespace

SlotHooks gSlotHooks;

bool slot_add(SlotWidgets &slot)
{
    if (sSlots.size() >= SLOT_MAX) {
        errno = ENOMEM;
        return false;
    }
    if (!slot_window_add(slot))
        return false;
    {
        std::lock_guard hold(sMutex);
        sSlots.emplace_front().widgets = slot;
    }
    resize_base();
    return true;
}

void slot_set_job(const void *pane, FileOp *job)
{
    std::lock_guard hold(sMutex);
    if (Entry *entry = x_find(pane))
        entry->job = job;
}

int slot_remove(const void *pane)
{
    SlotWidgets widgets;
    {
        std::lock_guard hold(sMutex);
        Entry *entry = x_find(pane);
        if (!entry)
            return -1;
        widgets = entry->widgets;
        sSlots.remove_if([&](const Entry &other) { return &other == entry; });
    }
    slot_window_remove(widgets);
    if (!sSlots.empty())
        resize_base();
    return 0;
}

void slot_mark_removed(const void *pane)
{
    std::lock_guard hold(sMutex);
    if (Entry *entry = x_find(pane)) {
        entry->removed = 1;
        entry->job = nullptr;
    }
}

void resize_base() { slot_window_resize(static_cast<int>(sSlots.size())); }

int slot_count() { return static_cast<int>(sSlots.size()); }

bool slot_with_job(const void *pane, const std::function<void(FileOp &job)> &f)
{
    std::lock_guard hold(sMutex);
    Entry *entry = x_find(pane);
    if (!entry || !entry->job)
        return false;
    f(*entry->job);
    return true;
}

namespace {

// The panes whose jobs have ended; their marks are cleared.
std::vector<void *> x_take_removed()
{
    std::lock_guard hold(sMutex);
    std::vector<void *> panes;
    for (Entry &entry : sSlots) {
        if (entry.removed)
            panes.push_back(entry.widgets.slot);
        entry.removed = 0;
    }
    return panes;
}

// Takes over what is due of every job, then shows it without holding anything up.
void x_show_progress()
{
    for (Entry &entry : sSlots) {
        {
            std::lock_guard hold(sMutex);
            if (!entry.job || !slot_take_progress(*entry.job, entry.shown))
                continue;
        }
        slot_show(entry.widgets, entry.shown);
    }
}

} // namespace

void slot_timer()
{
    std::vector<void *> panes = x_take_removed();
    for (void *pane : panes) {
        slot_ask_close(pane);
        slot_remove(pane);
    }
    if (!panes.empty()) {
        x_call(gSlotHooks.refresh, x_refresh);
        slot_wait_next();
    }
    x_show_progress();
    if (!panes.empty() && sSlots.empty() && base_window_closed != 0)
        x_end_program();
}

int slot_pause_cb(QWidget *button)
{
    auto *toggle = qobject_cast<QAbstractButton *>(button);
    if (toggle)
        slot_with_job(x_pane(button), [&](FileOp &job) { job.pause = toggle->isChecked(); });
    return W_CONTINUE;
}

int slot_cancel_cb(QWidget *button)
{
    QPointer<QWidget> pane = x_pane(button);
    int before = 0;
    if (!slot_with_job(pane, [&](FileOp &job) { before = job.pause.exchange(1); }))
        return W_CONTINUE;
    x_enable_buttons(pane, false);
    const WQuestion question = {QStringLiteral("File Operation"),
                                QStringLiteral("Do you want to terminate this operation ? "),
                                {QStringLiteral("&Yes"), QStringLiteral("&No")},
                                1,
                                2};
    auto answered = [pane, before, button](int answer) {
        if (!pane)
            return;
        x_enable_buttons(pane, true);
        button->setFocus(); // where it was
        bool there = slot_with_job(pane, [&](FileOp &job) {
            job.abort = job.abort || answer == 1;
            job.pause = before;
        });
        if (there && answer == 1)
            slot_ask_close(pane); // an aborted job does not wait for an answer
    };
    QWidget *box = wquestion(nullptr, question, answered);
    QObject::connect(pane, &QObject::destroyed, box, &QWidget::close);
    slot_window_centre(box);
    return W_CONTINUE;
}

void slot_finish_all()
{
    base_window_closed = 1;
    if (sSlots.empty())
        x_end_program();
}

void slot_terminate_all()
{
    slot_wait_drop();
    if (sSlots.empty()) {
        x_end_program();
        return;
    }
    {
        std::lock_guard hold(sMutex);
        for (Entry &entry : sSlots) {
            if (entry.job)
                entry.job->abort = 1;
        }
    }
    base_window_closed = 1;
    slot_ask_close(nullptr);
}

} // namespace tav

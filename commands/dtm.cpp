// Menus that are the directory hierarchy itself. A submenu is made when its item is armed and holds
// "Scanning..." until the worker has listed the directory. Then a second menu is filled, in turns
// of the main loop so that a huge directory does not stop the window, and takes the first one's
// place.
#include "commands/dtm.h"
#include "platform/shown.h"
#include "platform/ui_gate.h"
#include "platform/w.h"
#include "platform/worker.h"

#include <QCoreApplication>
#include <QPointer>
#include <QTimer>

namespace tav {

namespace {

constexpr int FILL_TURN = 500; // items made before the main loop runs again

// A submenu being filled. Lives in the queue of posted calls; the item may be gone when the next
// turn comes.
struct Filling {
    QPointer<DirMenuItem> item;
    std::shared_ptr<DtmScan> scan;
    QPointer<DtmMenu> menu; // the new submenu, not shown yet
};

// The item that waits for a scan; looked up when the worker reports. Main thread.
struct Waiting {
    std::shared_ptr<DtmScan> scan;
    QPointer<DirMenuItem> item;
};

QMenu *x_menu_of(const DirMenuItem &item) { return qobject_cast<QMenu *>(item.parent()); }

void x_repaint(const DirMenuItem &item)
{
    if (QMenu *menu = x_menu_of(item))
        menu->update();
}

DirMenuItem *x_new_item(QMenu *menu, const std::string &path, std::string_view label,
                        unsigned flags, DtmAction action)
{
    auto *item = new DirMenuItem(menu);
    std::string text(label);
    if (text.empty() || text.back() != '/')
        text += '/';
    item->setText(shown_label(text));
    item->setData(shown_text(text)); // what letters are compared with
    item->path = path;
    item->flags = flags & ~DTM_EXAMINE;
    item->action = action;
    QObject::connect(item, &QAction::triggered, item, [item] { item->choose(); });
    QObject::connect(item, &QAction::hovered, item, [item] { item->arm(); });
    return item;
}

// The directory has no subdirectories, or none that anybody may see: the item is a plain one.
void x_make_plain(DirMenuItem &item)
{
    DtmMenu *menu = item.submenu;
    item.submenu = nullptr;
    item.placeholder = nullptr;
    item.set_state(DtmState::plain);
    if (menu) {
        item.setMenu(nullptr);
        menu->hide();
        menu->deleteLater();
    }
    x_repaint(item);
}

// The full submenu takes the place of the one with the placeholder, on the screen too if that was
// there.
void x_exchange(DirMenuItem &item, DtmMenu *full)
{
    DtmMenu *old = item.submenu;
    const bool shown = old && old->isVisible();
    item.submenu = full;
    item.placeholder = nullptr;
    item.set_state(DtmState::cascade);
    if (old)
        old->hide();
    item.setMenu(full);
    QMenu *parent = x_menu_of(item);
    if (shown && parent) {
        parent->setActiveAction(nullptr);
        parent->setActiveAction(&item);
    }
    if (old)
        old->deleteLater();
    x_repaint(item);
}

void x_show_states(DirMenuItem &item)
{
    for (qsizetype i = 0; i < item.items.size(); i++) {
        const DtmState state = item.scan->states[static_cast<size_t>(i)];
        DirMenuItem &child = *item.items[i];
        if (child.state() != DtmState::unknown || state == DtmState::unknown)
            continue;
        if (state == DtmState::plain && !dtm_is_scanning(child))
            x_make_plain(child);
        else if (state == DtmState::cascade)
            child.set_state(state);
    }
    if (item.submenu)
        item.submenu->update();
}

void x_fill(const std::shared_ptr<Filling> &filling)
{
    DirMenuItem *item = filling->item;
    if (!item || !filling->menu) {
        delete filling->menu;
        return;
    }
    const std::vector<std::string> &names = filling->scan->names;
    const auto from = static_cast<size_t>(item->items.size());
    const size_t end = std::min(names.size(), from + FILL_TURN);
    QList<QAction *> actions;
    for (size_t i = from; i < end; i++) {
        item->items.append(x_new_item(filling->menu, dtm_join(item->path, names[i]), names[i],
                                      item->flags, item->action));
        actions.append(item->items.last());
    }
    filling->menu->addActions(actions);
    if (end < names.size()) {
        QTimer::singleShot(0, item, [filling] { x_fill(filling); });
        return;
    }
    x_exchange(*item, filling->menu);
    x_show_states(*item);
}

void x_listed(DirMenuItem &item, const std::shared_ptr<DtmScan> &scan)
{
    if (scan->names.empty()) { // a directory that refuses or is gone has nothing to show either
        x_make_plain(item);
        return;
    }
    auto filling = std::make_shared<Filling>();
    filling->item = &item;
    filling->scan = scan;
    filling->menu = new DtmMenu(item.submenu ? item.submenu->parentWidget() : nullptr);
    x_fill(filling);
}

// The items whose scans are under way or done.
QList<Waiting> sWaiting;

DirMenuItem *x_waiting(const std::shared_ptr<DtmScan> &scan)
{
    for (const Waiting &waiting : sWaiting)
        if (waiting.scan == scan)
            return waiting.item;
    return nullptr;
}

// Runs f with the item of the scan on the main thread, unless the item has gone.
template <typename F>
void x_post(const std::shared_ptr<DtmScan> &scan, F f)
{
    if (scan->cancel)
        return;
    ui_post([scan, f] {
        DirMenuItem *item = x_waiting(scan);
        if (item && !scan->cancel)
            f(*item, scan);
    });
}

void x_examined(DirMenuItem &item, const std::shared_ptr<DtmScan> &)
{
    if (!item.items.isEmpty() && !item.placeholder)
        x_show_states(item);
}

const DtmScanReport sReport = {
    [](const std::shared_ptr<DtmScan> &scan) { x_post(scan, x_listed); },
    [](const std::shared_ptr<DtmScan> &scan) { x_post(scan, x_examined); },
};

std::shared_ptr<DtmScan> x_new_scan(DirMenuItem &item)
{
    auto scan = std::make_shared<DtmScan>();
    scan->path = item.path;
    scan->flags = item.flags;
    item.scan = scan;
    sWaiting.append({scan, &item});
    return scan;
}

void x_forget_scan(const std::shared_ptr<DtmScan> &scan)
{
    sWaiting.removeIf([&scan](const Waiting &waiting) { return waiting.scan == scan; });
}

// The submenu is about to be shown for the first time.
void x_open(DirMenuItem &item)
{
    const std::shared_ptr<DtmScan> scan = x_new_scan(item);
    if (worker_start([scan] { dtm_scan_run(scan, sReport); }) == 0)
        return;
    x_forget_scan(scan);
    item.scan.reset();
    dtm_errinfo("Directory Scanning", QStringLiteral("Unable to start scanning procedure!"));
}

void x_set_examined(DirMenuItem &item, DtmState state)
{
    if (item.state() != DtmState::unknown || item.scan)
        return; // it was opened meanwhile
    if (state == DtmState::plain)
        x_make_plain(item);
    item.set_state(state);
    if (state == DtmState::cascade && !qobject_cast<DtmMenu *>(item.parent()))
        item.arm(); // an ordinary menu shows no arrow without a submenu
    x_repaint(item);
}

// Finds out whether an item shows an arrow, without opening it.
void x_examine(DirMenuItem &item)
{
    const QPointer<DirMenuItem> weak(&item);
    auto work = [weak, path = item.path, flags = item.flags] {
        const auto state =
            dtm_is_subdirs(path.c_str(), flags) ? DtmState::cascade : DtmState::plain;
        ui_post([weak, state] {
            if (DirMenuItem *there = weak.data())
                x_set_examined(*there, state);
        });
    };
    if (worker_start(work) != 0)
        x_set_examined(item, DtmState::cascade);
}

} // namespace

DirMenuItem::~DirMenuItem()
{
    if (scan) {
        scan->cancel = true; // the worker keeps what it uses until it has seen this
        x_forget_scan(scan);
    }
}

void DirMenuItem::arm()
{
    if (state() == DtmState::plain || submenu)
        return;
    submenu = new DtmMenu(x_menu_of(*this));
    placeholder = submenu->addAction(QStringLiteral("Scanning..."));
    placeholder->setEnabled(false);
    QObject::connect(
        submenu, &QMenu::aboutToShow, this, [this] { x_open(*this); }, Qt::SingleShotConnection);
    setMenu(submenu);
}

void DirMenuItem::choose()
{
    dtm_menu_dismiss();
    QTimer::singleShot(0, qApp, [action = action, path = path] { action(path.c_str()); });
}

DirMenuItem *dtm_add_item(QMenu *menu, const std::string &path, std::string_view label,
                          unsigned flags, DtmAction action)
{
    DirMenuItem *item = x_new_item(menu, path, label, flags, action);
    menu->addAction(item);
    dtm_menu_attend(menu);
    if (flags & DTM_EXAMINE)
        x_examine(*item);
    return item;
}

void dtm_insert_item(QMenu *menu, QAction *before, const std::string &path, unsigned flags,
                     int (*action)(const char *path))
{
    DirMenuItem *item = dtm_add_item(menu, path, path, flags, action);
    if (before)
        menu->insertAction(before, item); // moves it
}

bool dtm_is_scanning(const DirMenuItem &item) { return item.scan && !item.scan->finished; }

void dtm_errinfo(const char *title, const QString &text)
{
    WQuestion report;
    report.title = QLatin1String(title);
    report.text = text;
    report.buttons = {QStringLiteral("&Close")};
    wquestion(gBase, report, [](int) {});
}

} // namespace tav

// Menus that are the directory hierarchy itself. A submenu is made when its item is armed and holds
// "Scanning..." until the worker has listed the directory. Then a second menu is filled, in turns
// of the main loop so that a huge directory does not stop the window, and takes the first one's
// place.
#include "commands/dtm.h"
#include "platform/pool.h"
#include "platform/shown.h"
#include "platform/ui_gate.h"
#include "platform/w.h"
#include "platform/worker.h"

#include <QCoreApplication>
#include <QPointer>
#include <QTimer>
#include <map>
#include <new>

namespace tav {

namespace {

constexpr int FILL_TURN = 500; // items made before the main loop runs again
// A menu of more items than this is shown before the items have their texts, see make_room.
constexpr size_t MANY = 2000;

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

// The items whose scans are under way or done.
QList<Waiting> sWaiting;

QMenu *x_menu_of(const DirMenuItem &item) { return qobject_cast<QMenu *>(item.parent()); }

void x_repaint(const DirMenuItem &item)
{
    if (QMenu *menu = x_menu_of(item))
        menu->update();
}

// Throws when there is no room for it.
std::unique_ptr<DirMenuItem> x_new_item(QMenu *menu, const std::string &path,
                                        std::string_view label, unsigned flags, DtmAction action)
{
    auto made = std::make_unique<DirMenuItem>(menu);
    std::string text(label);
    if (text.empty() || text.back() != '/')
        text += '/';
    made->set_label(shown_label(text));
    made->path = path;
    made->flags = flags & ~DTM_EXAMINE;
    made->action = action;
    DirMenuItem *item = made.get();
    QObject::connect(item, &QAction::triggered, item, [item] { item->choose(); });
    QObject::connect(item, &QAction::hovered, item, [item] { item->arm(); });
    return made;
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

// Adds items up to that one; false after a failure, of which the user is told.
bool x_fill_to(DirMenuItem &item, DtmMenu *menu, const std::vector<std::string> &names, size_t end)
{
    QList<QAction *> actions;
    const bool many = names.size() > MANY;
    auto i = static_cast<size_t>(item.items.size());
    try {
        for (; i < end; i++) {
            const std::string path = dtm_join(item.path, names[i]);
            actions.append(x_new_item(menu, path, names[i], item.flags, item.action).release());
            item.items.append(static_cast<DirMenuItem *>(actions.last()));
            if (many)
                menu->make_room(item.items.last()->label());
            else
                actions.last()->setText(item.items.last()->label());
        }
    } catch (const std::bad_alloc &) {
        dtm_errinfo("Add Item",
                    QStringLiteral("Can't add item '%1' into the menu").arg(shown_text(names[i])));
    }
    menu->addActions(actions);
    return i == end;
}

// Gives the items of a menu that has been laid out their texts, which assistive technology reads.
void x_name_items(const std::shared_ptr<Filling> &filling, qsizetype from)
{
    if (!filling->item || !filling->menu)
        return;
    const QList<DirMenuItem *> &items = filling->item->items;
    const qsizetype end = std::min(items.size(), from + FILL_TURN);
    for (qsizetype i = from; i < end; i++)
        items[i]->setText(items[i]->label());
    if (end < items.size())
        QTimer::singleShot(0, filling->item, [filling, end] { x_name_items(filling, end); });
}

void x_fill(const std::shared_ptr<Filling> &filling)
{
    DirMenuItem *item = filling->item;
    if (!item || !filling->menu) {
        delete filling->menu;
        return;
    }
    const std::vector<std::string> &names = filling->scan->names;
    const size_t end = std::min(names.size(), static_cast<size_t>(item->items.size()) + FILL_TURN);
    if (x_fill_to(*item, filling->menu, names, end) && end < names.size()) {
        QTimer::singleShot(0, item, [filling] { x_fill(filling); });
        return;
    }
    x_exchange(*item, filling->menu);
    x_show_states(*item);
    if (names.size() > MANY)
        QTimer::singleShot(0, item, [filling] { x_name_items(filling, 0); });
}

void x_open(DirMenuItem &item);

// The submenu is shown for the first time, or again after that has failed.
void x_await_opening(DirMenuItem &item)
{
    QObject::connect(
        item.submenu, &QMenu::aboutToShow, &item, [&item] { x_open(item); },
        Qt::SingleShotConnection);
}

void x_forget_scan(const std::shared_ptr<DtmScan> &scan)
{
    sWaiting.removeIf([&scan](const Waiting &waiting) { return waiting.scan == scan; });
}

// The scan came to nothing: the next time that the submenu is shown it is tried again.
void x_give_up(DirMenuItem &item, const char *title, const QString &text)
{
    x_forget_scan(item.scan);
    item.scan.reset();
    if (item.submenu)
        x_await_opening(item);
    dtm_errinfo(title, text);
}

void x_listed(DirMenuItem &item, const std::shared_ptr<DtmScan> &scan)
{
    if (scan->no_memory) {
        x_give_up(item, "Memory Allocation", QStringLiteral("Not enough memory!"));
        return;
    }
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

void x_open(DirMenuItem &item)
{
    const std::shared_ptr<DtmScan> scan = x_new_scan(item);
    if (worker_start([scan] { dtm_scan_run(scan, sReport); }) == 0)
        return;
    x_give_up(item, "Directory Scanning", QStringLiteral("Unable to start scanning procedure!"));
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

// The items that wait for the examination of one directory: however often its item is made, one
// that hangs keeps no more than one worker.
std::map<std::pair<std::string, unsigned>, QList<QPointer<DirMenuItem>>> sExamining;

void x_examined_as(const std::pair<std::string, unsigned> &directory, DtmState state)
{
    const auto waiting = sExamining.extract(directory);
    if (!waiting)
        return;
    for (const QPointer<DirMenuItem> &item : waiting.mapped())
        if (item)
            x_set_examined(*item, state);
}

// Looks at the directories; never freed, as a hanging one may let go when the program ends.
Pool &x_pool()
{
    static auto *only = new Pool;
    return *only;
}

// Finds out whether an item shows an arrow, without opening it.
void x_examine(DirMenuItem &item)
{
    const std::pair directory(item.path, item.flags);
    const auto [place, first] = sExamining.try_emplace(directory);
    place->second.removeAll(nullptr);
    place->second.append(&item);
    if (!first)
        return;
    auto work = [directory] {
        const bool any = dtm_is_subdirs(directory.first.c_str(), directory.second);
        const DtmState state = any ? DtmState::cascade : DtmState::plain;
        ui_post([directory, state] { x_examined_as(directory, state); });
    };
    if (pool_ask(x_pool(), work) != 0)
        x_examined_as(directory, DtmState::cascade);
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
    x_await_opening(*this);
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
    try {
        DirMenuItem *item = x_new_item(menu, path, label, flags, action).release();
        item->setText(item->label());
        menu->addAction(item);
        dtm_menu_attend(menu);
        if (flags & DTM_EXAMINE)
            x_examine(*item);
        return item;
    } catch (const std::bad_alloc &) {
        return nullptr;
    }
}

void dtm_insert_item(QMenu *menu, QAction *before, const std::string &path, unsigned flags,
                     int (*action)(const char *path))
{
    DirMenuItem *item = dtm_add_item(menu, path, path, flags, action);
    if (item && before)
        menu->insertAction(before, item); // moves it
}

bool dtm_is_scanning(const DirMenuItem &item) { return item.scan && !item.scan->finished; }

void dtm_errinfo(const char *title, const QString &text)
{
    WQuestion report;
    report.title = QLatin1String(title);
    report.text = text;
    report.buttons = {QStringLiteral("&Close")};
    // Later: a box must not come up while a menu is on its way to the screen.
    QTimer::singleShot(0, gBase, [report] { wquestion(gBase, report, [](int) {}); });
}

} // namespace tav

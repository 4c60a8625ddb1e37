// Menus that are the directory hierarchy itself. A submenu is made when its item is armed and holds
// "Scanning..." until the worker has listed the directory. Then a second menu with the rows takes
// the first one's place.
#include "commands/dtm.h"
#include "commands/dtm_long.h"
#include "platform/pool.h"
#include "platform/shown.h"
#include "platform/ui_gate.h"
#include "platform/w.h"
#include "platform/worker.h"

#include <QCoreApplication>
#include <QTimer>
#include <algorithm>
#include <map>
#include <new>

namespace tav {

namespace {

constexpr size_t WIDE = 64; // so many of the longest names are measured to find the widest

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

QString x_label(std::string_view name)
{
    const bool ends = !name.empty() && name.back() == '/';
    return shown_label(name) + (ends ? QString() : QStringLiteral("/"));
}

// Throws when there is no room for it.
std::unique_ptr<DirMenuItem> x_new_item(QMenu *menu, const std::string &path,
                                        std::string_view label, unsigned flags, DtmAction action)
{
    auto made = std::make_unique<DirMenuItem>(menu);
    made->setText(x_label(label));
    made->path = path;
    made->flags = flags & ~DTM_EXAMINE;
    made->action = action;
    DirMenuItem *item = made.get();
    QObject::connect(item, &QAction::triggered, item, [item] { item->choose(); });
    QObject::connect(item, &QAction::hovered, item, [item] { item->arm(); });
    return made;
}

void x_drop_submenu(DirMenuItem &item)
{
    DtmMenu *menu = item.submenu;
    item.submenu = nullptr;
    item.placeholder = nullptr;
    item.items.clear();
    if (!menu)
        return;
    item.setMenu(nullptr);
    menu->hide();
    menu->deleteLater();
}

// The directory has no subdirectories, or none that anybody may see: the item is a plain one.
void x_make_plain(DirMenuItem &item)
{
    item.set_state(DtmState::plain);
    x_drop_submenu(item);
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

// Shows what is known by now of the rows that the submenu shows.
void x_show_states(DirMenuItem &item)
{
    const auto *menu = qobject_cast<DtmLongMenu *>(item.submenu);
    for (qsizetype i = 0; menu && i < item.items.size(); i++) {
        const DtmState state = item.scan->states[menu->top() + static_cast<size_t>(i)];
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

void x_forget_scan(DirMenuItem &item)
{
    if (!item.scan)
        return;
    item.scan->cancel = true; // the worker keeps what it uses until it has seen this
    sWaiting.removeIf([&item](const Waiting &waiting) { return waiting.scan == item.scan; });
    item.scan.reset();
}

// The submenu was scrolled: its items are other directories now.
void x_show_rows(DirMenuItem &item, size_t top)
{
    const std::vector<std::string> &names = item.scan->names;
    for (DirMenuItem *child : item.items) {
        const std::string &name = names[top++];
        x_forget_scan(*child);
        x_drop_submenu(*child);
        child->set_state(DtmState::unknown);
        child->path = dtm_join(item.path, name);
        child->setText(x_label(name));
    }
    x_show_states(item);
}

// Pixels for the widest of the names, or nearly: the longest ones are measured.
int x_room(const std::vector<std::string> &names, const QFontMetrics &metrics)
{
    std::vector<const std::string *> longest;
    longest.reserve(names.size());
    for (const std::string &name : names)
        longest.push_back(&name);
    const size_t measured = std::min(WIDE, longest.size());
    std::partial_sort(longest.begin(), longest.begin() + static_cast<ptrdiff_t>(measured),
                      longest.end(),
                      [](const auto *a, const auto *b) { return a->size() > b->size(); });
    int room = 0;
    for (size_t i = 0; i < measured; i++)
        room = std::max(room, metrics.horizontalAdvance(x_label(*longest[i])));
    return room;
}

DtmRows x_rows(DirMenuItem &item, const QFontMetrics &metrics)
{
    DtmRows rows;
    rows.count = item.scan->names.size();
    rows.room = x_room(item.scan->names, metrics);
    rows.label = [scan = item.scan](size_t row) { return x_label(scan->names[row]); };
    rows.show = [owner = QPointer(&item)](size_t top) { // the submenu goes a little later than it
        if (owner)
            x_show_rows(*owner, top);
    };
    return rows;
}

// Makes the submenu's items; without room for them all, of which the user is told, there are fewer.
void x_fill(DirMenuItem &item, DtmLongMenu &menu)
{
    const std::vector<std::string> &names = item.scan->names;
    DtmRows rows;
    QList<DtmAnyItem *> made;
    try {
        rows = x_rows(item, menu.fontMetrics());
        for (size_t i = 0, count = menu.room_for(names.size()); i < count; i++) {
            const std::string path = dtm_join(item.path, names[i]);
            DirMenuItem *child =
                x_new_item(&menu, path, names[i], item.flags, item.action).release();
            made.append(child);
            item.items.append(child);
        }
    } catch (const std::bad_alloc &) {
        const std::string &name = names[static_cast<size_t>(made.size())];
        dtm_errinfo("Add Item",
                    QStringLiteral("Can't add item '%1' into the menu").arg(shown_text(name)));
    }
    menu.set_rows(made, rows);
}

void x_open(DirMenuItem &item);

// The submenu is shown for the first time, or again after that has failed.
void x_await_opening(DirMenuItem &item)
{
    QObject::connect(
        item.submenu, &QMenu::aboutToShow, &item, [&item] { x_open(item); },
        Qt::SingleShotConnection);
}

// The scan came to nothing: the next time that the submenu is shown it is tried again.
void x_give_up(DirMenuItem &item, const char *title, const QString &text)
{
    x_forget_scan(item);
    if (item.submenu)
        x_await_opening(item);
    dtm_errinfo(title, text);
}

void x_listed(DirMenuItem &item)
{
    if (item.scan->no_memory) {
        x_give_up(item, "Memory Allocation", QStringLiteral("Not enough memory!"));
        return;
    }
    // A directory that refuses or is gone has nothing to show either.
    if (item.scan->names.empty()) {
        x_make_plain(item);
        return;
    }
    auto *full = new DtmLongMenu(item.submenu ? item.submenu->parentWidget() : nullptr);
    x_fill(item, *full);
    x_exchange(item, full);
    x_show_states(item);
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
            f(*item);
    });
}

const DtmScanReport sReport = {
    [](const std::shared_ptr<DtmScan> &scan) { x_post(scan, x_listed); },
    [](const std::shared_ptr<DtmScan> &scan) { x_post(scan, x_show_states); },
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
    x_forget_scan(*this);
    if (submenu)
        submenu->deleteLater();
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

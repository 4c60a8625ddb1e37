// A cascade of directory menus. A directory is read in turns of the main loop, a few entries each;
// what hides its menu stops that, and the next time it goes on behind the last item.
#include "commands/ca.h"
#include "app/config.h"
#include "commands/ca_scan.h"
#include "commands/dtm_menu.h"
#include "commands/dtm_scan.h"
#include "platform/shown.h"
#include "platform/w.h"
#include "views/tree_hotlist.h"

#include <QApplication>
#include <QDropEvent>
#include <QElapsedTimer>
#include <QMouseEvent>
#include <QPointer>
#include <QTimer>
#include <array>
#include <optional>

namespace tav {

namespace {

constexpr int TURN = 32;   // entries looked at before the main loop runs again
constexpr int ARM_MS = 20; // an item that is armed has its submenu at once if that takes no longer

struct CaItem : QAction {
    using QAction::QAction;
    std::string name;        // the label; of a top item the whole path
    CaItem *above = nullptr; // the item of whose submenu it is; null at the top
    CaCallback callback = nullptr;
    bool built = false; // its directory has been read, or cannot be
};

// An item whose submenu is being built.
struct Construction {
    QPointer<CaItem> item;
    CaReading reading;
};

std::array<std::optional<Construction>, CA_CONSTRUCTION> sConstructions;
QList<QPointer<QMenu>> sBackground; // menus whose items are walked, oldest first

QMenu *x_menu_of(const CaItem &item) { return qobject_cast<QMenu *>(item.parent()); }

QList<CaItem *> x_items(const QMenu *menu)
{
    QList<CaItem *> items;
    for (QAction *action : menu ? menu->actions() : QList<QAction *>())
        if (auto *item = dynamic_cast<CaItem *>(action))
            items.append(item);
    return items;
}

std::string x_path(const CaItem &item)
{
    return item.above ? dtm_join(x_path(*item.above), item.name) : item.name;
}

void x_choose(const CaItem &item)
{
    dtm_menu_dismiss();
    QTimer::singleShot(0, qApp, [callback = item.callback, path = x_path(item)] {
        callback(gBase, path.c_str());
    });
}

// Gives a menu of the cascade what an ordinary one lacks: releasing the button over an item chooses
// it even when it has a submenu, and drops are taken and do nothing.
class Attendant : public QObject {
public:
    explicit Attendant(QMenu *menu) : QObject(menu), m_menu(menu)
    {
        menu->installEventFilter(this);
        menu->setAcceptDrops(true);
    }

    bool eventFilter(QObject *, QEvent *event) override
    {
        switch (event->type()) {
        case QEvent::MouseButtonRelease:
            return released(*static_cast<QMouseEvent *>(event));
        case QEvent::DragEnter:
        case QEvent::DragMove:
        case QEvent::Drop: // not as a move: its source would remove what nobody has taken
            static_cast<QDropEvent *>(event)->setDropAction(Qt::IgnoreAction);
            event->accept();
            return true;
        default:
            return false;
        }
    }

private:
    bool released(const QMouseEvent &event)
    {
        auto *item = dynamic_cast<CaItem *>(m_menu->actionAt(event.position().toPoint()));
        const bool armed = item && item == m_menu->activeAction() && item->isEnabled();
        if (!armed || event.button() != Qt::LeftButton)
            return false;
        x_choose(*item);
        return true;
    }

    QMenu *m_menu;
};

void x_arm(CaItem &item);

CaItem *x_add(QMenu *menu, CaItem *above, const std::string &name, CaCallback callback)
{
    auto *item = new CaItem(menu);
    item->setText(shown_label(name));
    item->name = name;
    item->above = above;
    item->callback = callback;
    QObject::connect(item, &QAction::hovered, item, [item] { x_arm(*item); });
    QObject::connect(item, &QAction::triggered, item, [item] { x_choose(*item); });
    menu->addAction(item);
    return item;
}

// The menu is hidden: nothing more is built for it.
void x_forget(const QMenu *menu)
{
    sBackground.removeAll(menu);
    for (std::optional<Construction> &one : sConstructions)
        if (one && one->item && x_menu_of(*one->item) == menu)
            one.reset();
}

void x_attend(QMenu *menu)
{
    new Attendant(menu); // the menu's, as its child
    QObject::connect(menu, &QMenu::aboutToHide, menu, [menu] { x_forget(menu); });
}

// The submenu comes with the first subdirectory that is found. An item under the pointer opens it.
QMenu *x_submenu(CaItem &item)
{
    if (item.menu())
        return item.menu();
    QMenu *menu = x_menu_of(item);
    auto *submenu = new DtmMenu(menu);
    x_attend(submenu);
    item.setMenu(submenu);
    return submenu;
}

bool x_has(const CaItem &item, const std::string &name)
{
    const QList<CaItem *> items = x_items(item.menu());
    return std::any_of(items.begin(), items.end(),
                       [&name](const CaItem *one) { return one->name == name; });
}

void x_add_notice(QMenu *menu)
{
    QAction *notice = menu->addAction(QStringLiteral("too many items"));
    QFont font = menu->font();
    font.setItalic(true);
    notice->setFont(font);
    notice->setEnabled(false);
}

// Looks at one entry; true when the item is built.
bool x_step(Construction &one)
{
    std::string name;
    const CaEntry entry = ca_next(one.reading, name);
    if (entry == CaEntry::directory && !x_has(*one.item, name)) {
        QMenu *submenu = x_submenu(*one.item);
        x_add(submenu, one.item, name, one.item->callback);
        if (x_items(submenu).size() >= CA_SUB_ITEMS) {
            x_add_notice(submenu);
            one.item->built = true;
        }
    }
    if (entry == CaEntry::end)
        one.item->built = true;
    return one.item->built;
}

void x_advance(std::optional<Construction> &one)
{
    for (int i = 0; i < TURN && one; i++)
        if (!one->item || x_step(*one))
            one.reset();
}

bool x_is_begun(const CaItem &item)
{
    return std::any_of(sConstructions.begin(), sConstructions.end(),
                       [&item](const auto &one) { return one && one->item == &item; });
}

int x_work();

// Its own object: a widget has room for one piece of work only.
void x_start_work()
{
    static QPointer<QObject> worker;
    if (!worker)
        worker = new QObject(qApp);
    wproc_attach(worker, x_work);
}

// Begins the item's submenu, or goes on with it. Null when it is built or all places are taken.
std::optional<Construction> *x_begin(CaItem &item)
{
    const auto place = std::find(sConstructions.begin(), sConstructions.end(), std::nullopt);
    if (item.built || x_is_begun(item) || place == sConstructions.end())
        return nullptr;
    const QList<CaItem *> items = x_items(item.menu());
    const std::string after = items.isEmpty() ? "" : items.last()->name;
    CaReading reading;
    if (ca_open(reading, x_path(item), gOptions & OPTION_MENU_DOT, after) != 0) {
        item.built = true;
        item.setEnabled(false);
        return nullptr;
    }
    *place = Construction{&item, std::move(reading)};
    x_start_work();
    return &*place;
}

void x_arm(CaItem &item)
{
    std::optional<Construction> *one = x_begin(item);
    QElapsedTimer timer;
    timer.start();
    while (one && *one && timer.elapsed() < ARM_MS)
        x_advance(*one);
}

// Begins items of the menu while there is a place; false when nothing is left to begin.
bool x_walk(const QMenu *menu)
{
    bool left = false;
    for (CaItem *item : x_items(menu)) {
        x_begin(*item);
        left = left || !item->built;
    }
    return left;
}

int x_work()
{
    for (std::optional<Construction> &one : sConstructions)
        x_advance(one);
    sBackground.removeIf([](const QPointer<QMenu> &menu) { return !menu || !x_walk(menu); });
    return ca_constructions() + ca_backgrounds() > 0 ? W_CONTINUE : W_END;
}

void x_fill(QMenu *menu, CaCallback callback)
{
    if (gTree.paths.empty())
        return;
    menu->addSeparator();
    const size_t count = std::min(gTree.paths.size(), size_t{CA_TOP_ITEMS});
    for (size_t i = 0; i < count; i++)
        x_add(menu, nullptr, gTree.paths[i], callback);
    x_attend(menu);
}

} // namespace

int ca_populate_menu(QMenu *menu, CaCallback callback)
{
    if (x_items(menu).isEmpty())
        x_fill(menu, callback);
    const bool room = sBackground.size() < CA_BACKGROUND && !sBackground.contains(menu);
    if ((gOptions & OPTION_MENU_BUILD) && room) {
        sBackground.append(menu);
        x_start_work();
    }
    return 0;
}

int ca_constructions()
{
    return static_cast<int>(std::count_if(sConstructions.begin(), sConstructions.end(),
                                          [](const auto &one) { return one.has_value(); }));
}

int ca_backgrounds() { return static_cast<int>(sBackground.size()); }

} // namespace tav

// Builds menus from tables. A dimmed item would also lose its key, so the keys belong to actions of
// their own (QShortcut), which call the row's handler whatever the menu last showed.
#include "app/menu.h"

#include "commands/dtm_menu.h"

#include <QHash>
#include <QPointer>
#include <QShortcut>
#include <QVariant>

namespace tav {

namespace {

constexpr const char *sPopulated = "tav_populated"; // property of actions that a function row added

struct KeyName {
    const char *shown;
    int key;
};

constexpr KeyName sKeys[] = {
    {"Ret", Qt::Key_Return}, {"Del", Qt::Key_Delete}, {"Bksp", Qt::Key_Backspace},
    {"<-", Qt::Key_Left},    {"->", Qt::Key_Right},   {"F1", Qt::Key_F1},
    {"F2", Qt::Key_F2},      {"F3", Qt::Key_F3},      {"F4", Qt::Key_F4},
    {"F5", Qt::Key_F5},      {"F6", Qt::Key_F6},      {"F9", Qt::Key_F9},
    {"F10", Qt::Key_F10},    {"F11", Qt::Key_F11},
};

QList<QKeySequence> x_sequences(unsigned modifiers, const char *key)
{
    int with = 0;
    with |= modifiers & MENU_CTRL ? int(Qt::CTRL) : 0;
    with |= modifiers & MENU_SHIFT ? int(Qt::SHIFT) : 0;
    with |= modifiers & MENU_ALT ? int(Qt::ALT) : 0;
    for (const KeyName &name : sKeys)
        if (qstrcmp(name.shown, key) == 0) {
            QList<QKeySequence> out{QKeySequence(with | name.key)};
            if (name.key == Qt::Key_Return)
                out.append(QKeySequence(with | Qt::Key_Enter));
            return out;
        }
    return {QKeySequence(with | QChar::fromLatin1(*key).unicode())};
}

// Lets the row's key call its handler while the window has the focus.
void x_add_key(const MenuRow &row, QWidget *window)
{
    for (const QKeySequence &sequence : x_sequences(row.modifiers, row.key)) {
        const auto owned = window->findChildren<QShortcut *>(QString(), Qt::FindDirectChildrenOnly);
        const bool taken = std::any_of(owned.begin(), owned.end(), [&](const QShortcut *other) {
            return other->key() == sequence;
        });
        if (taken)
            continue;
        auto *shortcut = new QShortcut(sequence, window);
        shortcut->setObjectName(QLatin1String("key_") + QLatin1String(row.name));
        shortcut->setAutoRepeat(false); // a held F5 would read, a held Ctrl-V paste, time and again
        QObject::connect(shortcut, &QShortcut::activated, window,
                         [handler = row.handler, window] { handler(window); });
    }
}

QAction *x_add_row(QMenu *menu, const MenuRow &row, QWidget *window, bool keys)
{
    const QString shown = menu_accelerator_text(row.modifiers, row.key);
    QString text = QString::fromUtf8(row.label);
    if (!shown.isEmpty())
        text += QLatin1Char('\t') + shown;
    QAction *action = menu->addAction(text);
    action->setObjectName(QLatin1String(row.name));
    action->setCheckable(row.kind == MENU_TOGGLE);
    if (row.handler != nullptr)
        QObject::connect(action, &QAction::triggered, window,
                         [handler = row.handler, window] { handler(window); });
    if (keys && row.key != nullptr && row.handler != nullptr)
        x_add_key(row, window);
    return action;
}

// What the function row at that place has added.
QList<QAction *> x_populated(const QMenu *menu, const QAction *place)
{
    QList<QAction *> actions;
    for (QAction *action : menu->actions())
        if (action->property(sPopulated).value<void *>() == place)
            actions.append(action);
    return actions;
}

// A function row: an invisible action holds the place; what the row adds goes when the menu has
// closed, after the chosen one has run.
void x_add_function(QMenu *menu, const MenuRow &row)
{
    QAction *place = menu->addSeparator();
    place->setObjectName(QLatin1String(row.name));
    place->setVisible(false);
    QObject::connect(menu, &QMenu::aboutToHide, place, [menu, place] {
        for (QAction *action : x_populated(menu, place))
            action->deleteLater();
    });
    QObject::connect(menu, &QMenu::aboutToShow, place, [menu, place, populate = row.populate] {
        qDeleteAll(x_populated(menu, place));
        const QList<QAction *> before = menu->actions();
        populate(menu, place);
        for (QAction *action : menu->actions())
            if (!before.contains(action))
                action->setProperty(sPopulated, QVariant::fromValue<void *>(place));
    });
}

QList<QAction *> x_all_rows(const QMenu *menu)
{
    QList<QAction *> rows = menu->actions();
    for (const QAction *row : menu->actions())
        if (row->menu() != nullptr)
            rows += x_all_rows(row->menu());
    return rows;
}

// Runs the setup when the menu opens; once it is closed nothing stays dimmed.
void x_connect_setup(QMenu *menu, int (*setup)(QMenu *))
{
    if (setup == nullptr)
        return;
    QObject::connect(menu, &QMenu::aboutToShow, menu, [menu, setup] { setup(menu); });
    QObject::connect(menu, &QMenu::aboutToHide, menu, [rows = x_all_rows(menu)] {
        for (QAction *row : rows)
            row->setEnabled(true);
    });
}

} // namespace

QString menu_accelerator_text(unsigned modifiers, const char *key)
{
    if (key == nullptr)
        return {};
    QString text;
    if (modifiers & MENU_CTRL)
        text += QLatin1String("Ctrl-");
    if (modifiers & MENU_SHIFT)
        text += QLatin1String("Shift-");
    if (modifiers & MENU_ALT)
        text += QLatin1String("Alt-");
    return text + QLatin1String(key);
}

void menu_fill(QMenu *menu, const MenuRow *rows, QWidget *window, bool keys)
{
    QMenu *submenu = nullptr;
    for (const MenuRow *row = rows; row->level != 0; ++row) {
        QMenu *target = row->level == 1 || submenu == nullptr ? menu : submenu;
        switch (row->kind) {
        case MENU_SEPARATOR:
            target->addSeparator();
            break;
        case MENU_SUBMENU:
            submenu = target->addMenu(QString::fromUtf8(row->label));
            submenu->setObjectName(QLatin1String(row->name) + QLatin1String("_menu"));
            submenu->menuAction()->setObjectName(QLatin1String(row->name));
            break;
        case MENU_FUNCTION:
            x_add_function(target, *row);
            break;
        default:
            x_add_row(target, *row, window, keys);
        }
    }
}

QMenu *menu_create(const MenuTable &table, QWidget *window, bool keys)
{
    auto *menu = new DtmMenu(window); // its function row may add directories
    menu->setTitle(QString::fromUtf8(table.title));
    menu->setObjectName(QLatin1String(table.name));
    menu_fill(menu, table.rows, window, keys);
    x_connect_setup(menu, table.setup);
    return menu;
}

void menu_build_bar(QMenuBar *bar, const MenuTable *tables, QWidget *window)
{
    for (const MenuTable *table = tables; table->name != nullptr; ++table)
        bar->addMenu(menu_create(*table, window, true));
}

} // namespace tav

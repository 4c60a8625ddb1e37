// Menus are tables; this builds them. Main thread only.
#pragma once

#include <QMenu>
#include <QMenuBar>

namespace tav {

// MenuRow::kind.
constexpr int MENU_COMMAND = 1;
constexpr int MENU_SUBMENU = 2;
constexpr int MENU_TOGGLE = 4;
constexpr int MENU_FUNCTION = 8; // populate adds items at this place whenever the menu opens
constexpr int MENU_SEPARATOR = 0x10;

// MenuRow::modifiers.
constexpr unsigned MENU_CTRL = 0x1000000;
constexpr unsigned MENU_SHIFT = 0x2000000;
constexpr unsigned MENU_ALT = 0x4000000;

constexpr unsigned MENU_LINE = 0x40000; // MenuRow::style of separators

using MenuHandler = int (*)(QWidget *widget);
// Adds items to menu before the action before (null: at the end). The builder takes them out again.
using MenuPopulate = void (*)(QMenu *menu, QAction *before);

// One row of a menu table; a table ends with a row of level 0.
struct MenuRow {
    int level;             // 1 an item of the menu, 2 one of the submenu above it
    int kind;              // MENU_COMMAND ...
    unsigned modifiers;    // MENU_CTRL ..., 0 none
    const char *key;       // the accelerator's key as it is shown, or null
    unsigned style;        // MENU_LINE or 0
    const char *name;      // the item's name; its action's objectName
    const char *label;     // "&" before the mnemonic letter
    MenuHandler handler;   // runs when the item is chosen or its key pressed; guards itself
    MenuPopulate populate; // of MENU_FUNCTION rows
};

// Rows in short.
constexpr MenuRow MENU_END = {0, 0, 0, nullptr, 0, nullptr, nullptr, nullptr, nullptr};
constexpr MenuRow menu_line(int level)
{
    return {level, MENU_SEPARATOR, 0, nullptr, MENU_LINE, "separator", "", nullptr, nullptr};
}
constexpr MenuRow menu_command(int level, const char *name, const char *label, MenuHandler handler,
                               unsigned modifiers = 0, const char *key = nullptr)
{
    return {level, MENU_COMMAND, modifiers, key, 0, name, label, handler, nullptr};
}
constexpr MenuRow menu_toggle(int level, const char *name, const char *label, MenuHandler handler)
{
    return {level, MENU_TOGGLE, 0, nullptr, 0, name, label, handler, nullptr};
}
constexpr MenuRow menu_submenu(int level, const char *name, const char *label)
{
    return {level, MENU_SUBMENU, 0, nullptr, 0, name, label, nullptr, nullptr};
}
constexpr MenuRow menu_function(int level, const char *name, MenuPopulate populate)
{
    return {level, MENU_FUNCTION, 0, nullptr, 0, name, "", nullptr, populate};
}

// One menu of the menu bar.
struct MenuTable {
    const char *name;          // the menu's name, "file_menu"
    const char *title;         // in the bar
    const MenuRow *rows;       // up to MENU_END
    int (*setup)(QMenu *menu); // enables and dims the items when the menu opens; may be null
};

// The text shown for an accelerator: "Ctrl-N", "Shift-Ret", "F5", "Alt-<-"; empty without a key.
QString menu_accelerator_text(unsigned modifiers, const char *key);

// Fills a menu from rows. With keys, each accelerator works while window has the focus, and goes on
// working while its item is dimmed; a key that an earlier row of the window owns is only shown.
void menu_fill(QMenu *menu, const MenuRow *rows, QWidget *window, bool keys);

// A menu of its own, for a context menu: accelerators are shown only. The caller owns it.
QMenu *menu_create(const MenuTable &table, QWidget *window, bool keys);

// Puts one menu per table (up to one with a null name) into the bar.
void menu_build_bar(QMenuBar *bar, const MenuTable *tables, QWidget *window);

// The tables of the program, app/menu_tables.cpp; gMenuBar ends with a null name.
extern const MenuTable gMenuBar[];
extern const MenuTable gListMenu;    // context menu of the file list
extern const MenuTable gHotlistMenu; // context menu of the hotlist

} // namespace tav

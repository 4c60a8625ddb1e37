// A cascade of directory menus that reads its directories in the main loop's idle time. Complete,
// and attached to no menu of this program: who wants one calls ca_populate_menu before the menu is
// shown. Main thread only.
#pragma once

class QMenu;
class QWidget;

namespace tav {

constexpr int CA_TOP_ITEMS = 100;  // directories of the hotlist that a menu takes
constexpr int CA_SUB_ITEMS = 101;  // subdirectories, then "too many items"
constexpr int CA_CONSTRUCTION = 5; // items whose submenus are being built at once
constexpr int CA_BACKGROUND = 5;   // menus whose items are walked in the background at once

// What releasing the button over an item calls: the main window, the item's full path.
using CaCallback = int (*)(QWidget *window, const char *path);

// Fills the menu with the hotlist's directories, behind a separator; one that is filled already is
// left as it is. With OPTION_MENU_BUILD in gOptions the items' submenus are then built in the
// background, without it when an item is armed. Always 0.
int ca_populate_menu(QMenu *menu, CaCallback callback);

// How many items are under construction, how many menus are walked; for tests.
int ca_constructions();
int ca_backgrounds();

} // namespace tav

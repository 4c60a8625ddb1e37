// The menus of the program, as they stand.
#include "app/base.h"
#include "app/menu.h"
#include "commands/em_select.h"
#include "commands/fm_refresh.h"
#include "platform/w.h"

namespace tav {

namespace {

int fm_exit(QWidget *)
{
    base_leave();
    return W_CONTINUE;
}

constexpr MenuRow sFileMenu[] = {
    menu_command(1, "fm_refresh", "&Refresh", fm_refresh, 0, "F5"),
    menu_line(1),
    menu_command(1, "fm_exit", "E&xit", fm_exit, MENU_ALT, "X"),
    MENU_END,
};

constexpr MenuRow sEditMenu[] = {
    menu_submenu(1, "em_select", "&Select"),
    menu_command(2, "em_select_all", "&All", em_select_all, MENU_CTRL, "A"),
    menu_submenu(1, "em_unselect", "&Unselect"),
    menu_command(2, "em_unselect_all", "&All", em_unselect_all, MENU_CTRL, "U"),
    menu_command(1, "em_invert", "&Invert Selection", em_invert_selection, MENU_CTRL, "I"),
    MENU_END,
};

} // namespace

const MenuTable gMenuBar[] = {
    {"file_menu", "&File", sFileMenu, nullptr},
    {"edit_menu", "&Edit", sEditMenu, nullptr},
    {nullptr, nullptr, nullptr, nullptr},
};

} // namespace tav

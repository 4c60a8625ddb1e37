// The menus of the program, as they stand.
#include "app/about.h"
#include "app/base.h"
#include "app/config_dlg.h"
#include "app/menu.h"
#include "app/quickref.h"
#include "commands/em.h"
#include "commands/fm.h"
#include "commands/fm_dlg.h"
#include "commands/fm_refresh.h"
#include "commands/lcm.h"
#include "platform/w.h"
#include "views/gm.h"
#include "views/hm.h"
#include "views/tree.h"
#include "views/vm.h"

namespace tav {

namespace {

int fm_exit(QWidget *)
{
    base_leave();
    return W_CONTINUE;
}

constexpr MenuRow sFileMenu[] = {
    menu_submenu(1, "fm_new", "&New"),
    menu_command(2, "fm_new_file", "F&ile", fm_new_file, 0, "F3"),
    menu_command(2, "fm_new_folder", "&Folder", fm_new_folder, 0, "F4"),
    menu_command(2, "fm_new_window", "&Window", fm_new_window, MENU_CTRL, "N"),
    menu_line(1),
    menu_command(1, "fm_open", "&Open", fm_open, 0, "Ret"),
    menu_command(1, "fm_open_another", "Open In Win&dow", fm_open_another, MENU_CTRL, "Ret"),
    menu_command(1, "fm_view", "&View", fm_view, 0, "V"),
    menu_command(1, "fm_edit", "&Edit", fm_edit, MENU_CTRL, "E"),
    menu_command(1, "fm_open_with", "Open &With...", fm_open_with, MENU_SHIFT, "Ret"),
    menu_line(1),
    menu_command(1, "fm_open_pterm", "Open &Terminal", fm_open_pterm, MENU_CTRL, "T"),
    menu_line(1),
    menu_command(1, "fm_refresh", "&Refresh", fm_refresh, 0, "F5"),
    menu_line(1),
    menu_command(1, "fm_print", "&Print", fm_print, MENU_CTRL, "P"),
    menu_command(1, "fm_print_directory", "Print Dire&ctory", nullptr),
    menu_line(1),
    menu_command(1, "fm_inspect", "&Inspect...", fm_inspect, 0, "F9"),
    menu_line(1),
    menu_command(1, "fm_exit", "E&xit", fm_exit, MENU_ALT, "X"),
    MENU_END,
};

constexpr MenuRow sEditMenu[] = {
    menu_command(1, "em_cut", "Cu&t", em_cut, MENU_CTRL, "X"),
    menu_command(1, "em_copy", "C&opy", em_copy, MENU_CTRL, "C"),
    menu_command(1, "em_paste", "&Paste", em_paste, MENU_CTRL, "V"),
    menu_command(1, "em_delete", "&Delete", em_delete, 0, "Del"),
    menu_command(1, "em_rename", "&Rename", em_rename, 0, "F2"),
    menu_line(1),
    menu_function(1, "em_populate", em_populate),
    menu_line(1),
    menu_submenu(1, "em_select", "&Select"),
    menu_command(2, "em_select_all", "&All", em_select_all, MENU_CTRL, "A"),
    menu_command(2, "em_select_pattern", "&Pattern", em_select_pattern, MENU_CTRL, "S"),
    menu_submenu(1, "em_unselect", "&Unselect"),
    menu_command(2, "em_unselect_all", "&All", em_unselect_all, MENU_CTRL, "U"),
    menu_command(2, "em_unselect_pattern", "&Pattern", em_unselect_pattern),
    menu_command(1, "em_invert", "&Invert Selection", em_invert_selection, MENU_CTRL, "I"),
    menu_line(1),
    menu_command(1, "em_preferences", "&Preferences...", em_edit_preferences, 0, "F10"),
    menu_command(1, "em_associations", "&Associations...", em_edit_associations, 0, "F11"),
    MENU_END,
};

constexpr MenuRow sViewMenu[] = {
    menu_submenu(1, "vm_toolbar", "Toolbars"),
    menu_toggle(2, "vm_nav_tb", "&Navigation", vm_nav_tb_toggle),
    menu_toggle(2, "vm_clip_tb", "&Clipboard", vm_clip_tb_toggle),
    menu_toggle(2, "vm_misc_tb", "&Misc", vm_misc_tb_toggle),
    menu_toggle(2, "vm_hotlist_tb", "&Hotlist", vm_hotlist_tb_toggle),
    menu_toggle(2, "vm_path_tb", "&Path", vm_path_tb_toggle),
    menu_toggle(2, "vm_filter_tb", "&Filter", vm_filter_tb_toggle),
    menu_line(2),
    menu_command(2, "vm_text_and_images", "Text &and Images", vm_text_and_images),
    menu_command(2, "vm_text_only", "&Text Only", vm_text_only),
    menu_command(2, "vm_images_only", "&Images Only", vm_images_only),
    menu_toggle(1, "vm_icon", "&Icon Pane", vm_icon_toggle),
    menu_toggle(1, "vm_hotlist", "&Hotlist Pane", vm_hotlist_toggle),
    menu_toggle(1, "vm_status", "&Status Pane", vm_status_toggle),
    MENU_END,
};

constexpr MenuRow sGoMenu[] = {
    menu_command(1, "gm_back", "Back", gm_back, MENU_ALT, "<-"),
    menu_command(1, "gm_forward", "Forward", gm_forward, MENU_ALT, "->"),
    menu_command(1, "gm_up", "Up One Level", gm_up, 0, "Bksp"),
    menu_command(1, "gm_home", "Home", gm_home, 0, "F6"),
    MENU_END,
};

constexpr MenuRow sHotlistMenu[] = {
    menu_command(1, "hm_add", "&Add Current Directory", hm_add, MENU_CTRL, "D"),
    menu_command(1, "hm_delete", "&Remove Current Directory", hm_remove, MENU_CTRL, "R"),
    menu_function(1, "hm_populate", hm_populate),
    MENU_END,
};

constexpr MenuRow sHelpMenu[] = {
    menu_command(1, "help_quickref", "&Quick Reference", help_quickref, 0, "F1"),
    menu_command(1, "help_about", "&About", help_about),
    MENU_END,
};

// What depends on the selection comes below it when the menu opens.
constexpr MenuRow sListContext[] = {
    menu_submenu(1, "lcm_new", "&New"),
    menu_command(2, "lcm_new_folder", "F&older", fm_new_folder),
    menu_command(2, "lcm_new_file", "F&ile", fm_new_file),
    MENU_END,
};

constexpr MenuRow sHotlistContext[] = {
    menu_command(1, "hcm_add", "Add", tree_add_cb, MENU_CTRL, "D"),
    menu_command(1, "hcm_delete", "Remove", tree_delete_cb, MENU_CTRL, "R"),
    menu_line(1),
    menu_command(1, "hcm_sort", "Sort", hm_sort),
    MENU_END,
};

} // namespace

const MenuTable gMenuBar[] = {
    {"file_menu", "&File", sFileMenu, fm_setup},
    {"edit_menu", "&Edit", sEditMenu, em_setup},
    {"view_menu", "&View", sViewMenu, vm_setup},
    {"go_menu", "&Go", sGoMenu, gm_setup},
    {"hotlist_menu", "&Hotlist", sHotlistMenu, hm_setup},
    {"help_menu", "Hel&p", sHelpMenu, nullptr},
    {nullptr, nullptr, nullptr, nullptr},
};

const MenuTable gListMenu = {"list_cmenu", "", sListContext, lcm_setup};
const MenuTable gHotlistMenu = {"hotlist_cmenu", "", sHotlistContext, hcm_setup};

} // namespace tav

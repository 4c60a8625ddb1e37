// What each row of the program's menus does, and when it must not. A row without an entry here
// fails the test that goes through the tables.
#pragma once

#include "app/config.h"
#include "app/menu.h"
#include "commands/clip.h"
#include "commands/jobs.h"
#include "support/dialogs.h"
#include "support/window.h"
#include "views/fl_back.h"
#include "views/history.h"
#include "views/hm.h"
#include "views/tree.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QLineEdit>
#include <QMimeData>

namespace tav::test {

// What stands in the window's directory, and what was so before a row was triggered.
struct RowsState {
    Window *window = nullptr;
    int exits = 0;        // how often the program would have ended
    std::string path;     // shown directory
    size_t hotlist = 0;   // its length
    int count = 0;        // entries of the list
    std::string first;    // of the hotlist
    bool panel = false;   // the hotlist's panel is hidden
    std::string selected; // names
};
inline RowsState gRows;

struct RowCase {
    const char *name;
    void (*can)();    // makes a state in which the row acts; null: it never does
    void (*cannot)(); // and one in which it must not; null: a dialog is up
    bool (*acted)();
    const char *focus = "filelist"; // where its key is pressed
};

namespace rows {

inline void as_it_is() {}
inline void a_file() { Window::select({"a.c"}); }
inline void a_directory() { Window::select({"docs"}); }
inline void an_unknown_file() { Window::select({"thing"}); }
inline void two_directories() { Window::select({"docs", "more"}); }
inline void nothing() { Window::select({}); }
inline void a_clipboard()
{
    clip_put(std::make_shared<const FileListRecord>(transf_make("/x", {"y"})), false);
}
inline void a_way_back() { fl_newpath(nullptr, gRows.window->dir.at("shown/docs").c_str()); }
inline void a_way_forward()
{
    a_way_back();
    fl_back();
}
inline void the_root() { fl_newpath(nullptr, "/"); }
inline void home() { fl_newpath(nullptr, gRows.window->dir.path().c_str()); }
inline void in_hotlist() { tree_add(tree_view(), gDir.path.c_str()); }
inline void empty_hotlist()
{
    tree_set_paths({});
    tree_build(tree_view());
}
inline void a_leaf_in_the_hotlist() { tree_set_paths({gRows.window->dir.at("shown/docs")}); }
inline void a_file_and_a_leaf()
{
    a_leaf_in_the_hotlist();
    a_file();
}
inline void sortable_hotlist()
{
    tree_set_paths({"/usr", "/"});
    tree_build(tree_view());
}
inline void on_a_hotlist_row()
{
    sortable_hotlist();
    tree_view()->setCurrentItem(tree_view()->topLevelItem(0));
}
inline void beside_the_hotlist_rows()
{
    sortable_hotlist();
    tree_view()->setCurrentItem(nullptr);
}
inline void a_new_file() { gRows.window->dir.file("shown/new.c"); }

inline bool started() { return gRows.window->dir.exists("out"); }
inline bool moved() { return gDir.path != gRows.path; }
inline bool selection_changed() { return selected_names() != gRows.selected; }
inline bool hotlist_changed() { return gTree.paths.size() != gRows.hotlist; }
inline bool never() { return false; }
inline bool submenu_up(const char *name)
{
    for (QWidget *widget : QApplication::topLevelWidgets())
        if (widget->isVisible() && widget->objectName() == QLatin1String(name))
            return true;
    return false;
}
inline bool cut_is_there() { return clip_files() && clip_files()->cut; }
inline bool copy_is_there() { return clip_files() && !clip_files()->cut; }
inline bool asks(const char *title)
{
    const QList<QMessageBox *> boxes = boxes_standing();
    return !boxes.isEmpty() && boxes.first()->windowTitle() == QLatin1String(title);
}
inline bool asks_to_delete() { return asks("Delete"); }

} // namespace rows

// clang-format off
inline const RowCase gRowCases[] = {
    {"fm_new", rows::as_it_is, nullptr, [] { return rows::submenu_up("fm_new_menu"); }},
    {"fm_new_file", rows::as_it_is, nullptr, [] { return dialog_up("new_dlg") != nullptr; }},
    {"fm_new_folder", rows::as_it_is, nullptr, [] { return dialog_up("new_dlg") != nullptr; }},
    {"fm_new_window", rows::as_it_is, nullptr, rows::started},
    {"fm_open", rows::a_file, rows::two_directories, rows::started},
    {"fm_open_another", rows::a_directory, rows::a_file, rows::started},
    {"fm_view", rows::a_file, rows::a_directory, rows::started, "tb_hotlist"},
    {"fm_edit", rows::a_file, rows::a_directory, rows::started},
    {"fm_open_with", rows::a_file, rows::nothing, [] { return dialog_up("open_with") != nullptr; }},
    {"fm_open_pterm", rows::as_it_is, nullptr, rows::started},
    {"fm_refresh", rows::a_new_file, nullptr, [] { return gDir.count > gRows.count; }},
    {"fm_print", rows::a_file, rows::nothing, rows::started},
    {"fm_print_directory", nullptr, rows::a_directory, rows::never},
    {"fm_inspect", rows::a_file, rows::nothing, [] { return dialog_up("property_dlg") != nullptr; }},
    {"fm_exit", rows::as_it_is, nullptr, [] { return gRows.exits > 0; }},

    {"em_cut", rows::a_file, rows::nothing, rows::cut_is_there},
    {"em_copy", rows::a_file, rows::nothing, rows::copy_is_there},
    {"em_paste", rows::a_clipboard, rows::nothing, [] { return !gJobs.empty(); }},
    {"em_delete", rows::a_file, rows::nothing, rows::asks_to_delete},
    {"em_rename", rows::a_file, rows::nothing,
     [] { return w_find<QLineEdit>("em_rename_field") != nullptr; }},
    {"em_populate", rows::a_file, rows::nothing, [] { return rows::submenu_up("mgen_copy_to_menu"); }},
    {"em_select", rows::as_it_is, nullptr, [] { return rows::submenu_up("em_select_menu"); }},
    {"em_select_all", rows::nothing, nullptr, rows::selection_changed},
    {"em_select_pattern", rows::nothing, nullptr, [] { return dialog_up("pattern_dlg") != nullptr; }},
    {"em_unselect", rows::a_file, rows::nothing, [] { return rows::submenu_up("em_unselect_menu"); }},
    {"em_unselect_all", rows::a_file, rows::nothing, rows::selection_changed},
    {"em_unselect_pattern", rows::a_file, rows::nothing,
     [] { return dialog_up("pattern_dlg") != nullptr; }},
    {"em_invert", rows::a_file, nullptr, rows::selection_changed},
    {"em_preferences", rows::as_it_is, nullptr, [] { return dialog_up("config_dlg") != nullptr; }},
    {"em_associations", rows::as_it_is, nullptr,
     [] { return dialog_up("associate_dlg") != nullptr; }},

    {"vm_toolbar", nullptr, rows::as_it_is, [] { return rows::submenu_up("vm_toolbar_menu"); }},
    {"vm_nav_tb", nullptr, rows::as_it_is, rows::never},
    {"vm_clip_tb", nullptr, rows::as_it_is, rows::never},
    {"vm_misc_tb", nullptr, rows::as_it_is, rows::never},
    {"vm_hotlist_tb", nullptr, rows::as_it_is, rows::never},
    {"vm_path_tb", nullptr, rows::as_it_is, rows::never},
    {"vm_filter_tb", nullptr, rows::as_it_is, rows::never},
    {"vm_text_and_images", nullptr, rows::as_it_is, rows::never},
    {"vm_text_only", nullptr, rows::as_it_is, rows::never},
    {"vm_images_only", nullptr, rows::as_it_is, rows::never},
    {"vm_icon", nullptr, rows::as_it_is, rows::never},
    {"vm_hotlist", nullptr, rows::as_it_is,
     [] { return w_find("hotlist_panel")->isHidden() != gRows.panel; }},
    {"vm_status", nullptr, rows::as_it_is, rows::never},

    {"gm_back", rows::a_way_back, rows::as_it_is, rows::moved},
    {"gm_forward", rows::a_way_forward, rows::as_it_is, rows::moved},
    {"gm_up", rows::as_it_is, rows::the_root, rows::moved},
    {"gm_home", rows::as_it_is, rows::home, rows::moved},

    {"hm_add", rows::as_it_is, rows::in_hotlist, rows::hotlist_changed},
    {"hm_delete", rows::in_hotlist, rows::as_it_is, rows::hotlist_changed},
    {"hm_populate", rows::a_leaf_in_the_hotlist, rows::empty_hotlist, rows::moved},

    {"help_quickref", rows::as_it_is, nullptr, [] { return dialog_up("quickref") != nullptr; }},
    {"help_about", rows::as_it_is, nullptr, [] { return dialog_up("about_dlg") != nullptr; }},

    {"lcm_new", rows::nothing, nullptr, [] { return rows::submenu_up("lcm_new_menu"); }},
    {"lcm_new_folder", rows::nothing, nullptr, [] { return dialog_up("new_dlg") != nullptr; }},
    {"lcm_new_file", rows::nothing, nullptr, [] { return dialog_up("new_dlg") != nullptr; }},

    {"hcm_add", rows::beside_the_hotlist_rows, rows::on_a_hotlist_row, rows::hotlist_changed},
    {"hcm_delete", rows::on_a_hotlist_row, rows::beside_the_hotlist_rows, rows::hotlist_changed},
    {"hcm_sort", rows::sortable_hotlist, nullptr, [] { return gTree.paths.front() != gRows.first; }},
};

// What the list's context menu gets when it opens; where a row must not act it is not there.
inline const RowCase gRunTimeCases[] = {
    {"lcm_open", rows::a_file, rows::an_unknown_file, rows::started},
    {"lcm_open_another", rows::a_directory, rows::a_file, rows::started},
    {"lcm_view", rows::a_file, rows::a_directory, rows::started},
    {"lcm_edit", rows::a_file, rows::a_directory, rows::started},
    {"lcm_open_with", rows::a_file, rows::a_directory,
     [] { return dialog_up("open_with") != nullptr; }},
    {"lcm_print", rows::a_file, rows::a_directory, rows::started},
    {"lcm_cut", rows::a_file, rows::nothing, rows::cut_is_there},
    {"lcm_copy", rows::a_file, rows::nothing, rows::copy_is_there},
    {"lcm_paste", rows::a_clipboard, rows::nothing, [] { return !gJobs.empty(); }},
    {"lcm_delete", rows::a_file, rows::nothing, rows::asks_to_delete},
    {"lcm_rename", rows::a_file, rows::two_directories,
     [] { return dialog_up("property_dlg") != nullptr; }},
    {"mgen_copy_to", rows::a_file, rows::nothing,
     [] { return rows::submenu_up("mgen_copy_to_menu"); }},
    {"mgen_copy_to_other", rows::a_file, rows::nothing,
     [] { return dialog_up("input_dest") != nullptr; }},
    {"mgen_copy_to_root", rows::a_file_and_a_leaf, rows::empty_hotlist,
     [] { return rows::asks("copy"); }},
    {"mgen_move_to", rows::a_file, rows::nothing,
     [] { return rows::submenu_up("mgen_move_to_menu"); }},
    {"mgen_move_to_other", rows::a_file, rows::nothing,
     [] { return dialog_up("input_dest") != nullptr; }},
    {"mgen_move_to_root", rows::a_file_and_a_leaf, rows::empty_hotlist,
     [] { return rows::asks("move"); }},
    {"lcm_inspect", rows::a_file, rows::nothing,
     [] { return dialog_up("property_dlg") != nullptr; }},
};
// clang-format on

// The same as a table; "mgen_copy_to_root" and its like stand for the first directory.
inline constexpr MenuRow gRunTimeRows[] = {
    menu_command(1, "lcm_open", "", nullptr),
    menu_command(1, "lcm_open_another", "", nullptr),
    menu_command(1, "lcm_view", "", nullptr),
    menu_command(1, "lcm_edit", "", nullptr),
    menu_command(1, "lcm_open_with", "", nullptr),
    menu_command(1, "lcm_print", "", nullptr),
    menu_command(1, "lcm_cut", "", nullptr),
    menu_command(1, "lcm_copy", "", nullptr),
    menu_command(1, "lcm_paste", "", nullptr),
    menu_command(1, "lcm_delete", "", nullptr),
    menu_command(1, "lcm_rename", "", nullptr),
    menu_submenu(1, "mgen_copy_to", ""),
    menu_command(2, "mgen_copy_to_other", "", nullptr),
    menu_command(2, "mgen_copy_to_root", "", nullptr),
    menu_submenu(1, "mgen_move_to", ""),
    menu_command(2, "mgen_move_to_other", "", nullptr),
    menu_command(2, "mgen_move_to_root", "", nullptr),
    menu_command(1, "lcm_inspect", "", nullptr),
    MENU_END,
};

} // namespace tav::test

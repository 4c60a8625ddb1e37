// The directory tree. In hotlist mode its top level is the hotlist, each row with its full path; in
// entered mode it is rooted at one directory, headed by a ".." row that leads back. Levels are read
// when they are expanded and freed when they are collapsed. Main thread only; workers read the
// disk.
#pragma once

#include "views/tree_hotlist.h"
#include "views/tree_view.h"

#include <QPoint>
#include <string>

namespace tav {

// What the tree needs of the floors above; app/base.cpp fills it in. Every member may be null.
struct TreeHooks {
    void (*context_menu)(const QPoint &global); // opens the hotlist's context menu
};
extern TreeHooks gTreeHooks;

constexpr const char *TREE_TRANSPORT = "application/x-tav-hotlist"; // type of a dragged hotlist row
constexpr const char *TREE_DRAG_DATA = "This is tav hotlist entry";

// Binds the widget "tree" of the main window: images, font, drags. The rows come with tree_load.
void tree_setup();
TreeView *tree_view(); // null before tree_setup

// Hotlist mode: one top-level row per path of the hotlist, in its order. The cursor stays on the
// path that it was on or, coming back to the hotlist, goes to the one that was entered.
void tree_build(TreeView *tree);

// Roots the tree at a directory, or (null) goes back to the hotlist. Nothing when it is the root
// already.
void tree_set_contents(TreeView *tree, const char *path);
const char *tree_root(); // the directory the tree is rooted at, null in hotlist mode
int tree_depth();        // how many directories deep the user has entered

// Reads the level below parent (null: the top level, of path) and adds its directories. Waits no
// longer than anybody could see; what takes longer comes later, and meanwhile everything goes on.
void x_tree_expand(TreeView *tree, TreeItem *parent, const char *path);

// Adds a row in order of its name (sorted; a name that is there already is refused: null) or last;
// its image and mark follow when they have been found out.
TreeItem *x_add_item(TreeView *tree, TreeItem *parent, const std::string &name, bool sorted);

// The top-level row of that name, null when there is none.
TreeItem *x_find_item(TreeView *tree, const std::string &name);

// Takes the top-level row of that name out.
void x_remove_item(TreeView *tree, const std::string &name);

// Sets what is known of a row's directory: its images and its mark. subdirectories as
// fs_path_has_subdirectories answers.
void x_set_look(TreeItem *item, int subdirectories);

// The row's directory. Returns the length.
int x_get_fullpath(const TreeItem *row, std::string &buffer);

// Makes the row's directory the root, ".." the way back. buffer receives the full path, or nothing
// when that leads back to the hotlist. Returns its length.
int x_enter_item(TreeView *tree, TreeItem *row, std::string &buffer);

int tree_state_cb(TreeView *tree, TreeItem *row, bool expanded); // a row was expanded or collapsed
int tree_selection_cb(TreeView *tree, TreeItem *row); // a row was chosen: shows its directory
int tree_input_cb(TreeView *tree, TreeItem *row);     // a button was pressed over a row
int tree_add_cb(QWidget *widget);                     // the context menu's row into the hotlist
int tree_delete_cb(QWidget *widget);                  // the context menu's row out of the hotlist
int tree_outbound_cb(TreeView *tree);                 // the pressed row is dragged away
int tree_dnd_cb(TreeView *tree, TreeItem *target, bool after); // and dropped beside another

// Puts a top-level item before another one.
void tree_add_before(TreeView *tree, TreeItem *item, TreeItem *target);

// The top-level row pressed last, the candidate for a drag; null when none.
TreeItem *tree_dnd_item();
void tree_forget(const TreeItem *item); // a row is about to go

int tree_goto(const char *path); // does nothing; always 0

} // namespace tav

// The hotlist: the user's favourite directories in the user's order, and their file, one path a
// line. Knows no Qt; the tree shows it through the callbacks below. Main thread only.
//
// Several instances share one file. Saving therefore compares what was read with what is kept now,
// and applies the difference (added, removed, reordered) to what the file holds by then.
#pragma once

#include <string>
#include <string_view>
#include <vector>

class QTreeWidgetItem;

namespace tav {

class TreeView;

constexpr size_t TREE_LINE =
    1024; // characters of a line of the file; a longer one is several entries

// The hotlist. No two paths are equal, byte by byte: "/usr" and "/usr/" are two.
struct HotlistTree {
    std::vector<std::string> paths; // in list order; changed through the functions below only
    QTreeWidgetItem *menu_item;     // the row on which the tree's context menu was opened, or null
};

extern HotlistTree gTree;

// How the tree widget follows the list; every member may be null. Filled in by tree_setup.
struct TreeRowHooks {
    void (*added)(TreeView *tree, const std::string &path);
    void (*removed)(TreeView *tree, const std::string &path);
    void (*rebuilt)(TreeView *tree); // many rows changed
};
extern TreeRowHooks gTreeRows;

// 1 when the path is in the list, else 0. Takes the same time for a long list as for a short one.
int tree_lookup(const char *path);

// Appends a path and shows its row in tree (which may be null). 0, or -1 when it is there already
// or holds a newline, which the file could not keep.
int tree_add(TreeView *tree, const char *path);

// Takes a path out; nothing when it is not there. Always 0.
int tree_remove(TreeView *tree, const char *path);

// Sorts the list by bytes and rebuilds the rows of tree. Always 0.
int tree_sort(TreeView *tree);

// Takes over a new order (or another set) of paths; repeated ones are dropped. Shows nothing.
void tree_set_paths(const std::vector<std::string> &paths);

// Reads dir/name and adds every line; just "/" when it cannot be read. Always 0.
int tree_load(TreeView *tree, const char *dir, const char *name);

// Replaces dir/name by the list, after joining in what another instance wrote since. 0, or -1 when
// it cannot be written.
int tree_save(TreeView *tree, const char *dir, const char *name);

// The lines of a hotlist file as entries: long lines in pieces, each up to its first NUL.
std::vector<std::string> tree_split_lines(std::string_view content);

// What the file should hold: theirs, with our additions, removals and order since base applied.
std::vector<std::string> tree_merge(const std::vector<std::string> &base,
                                    const std::vector<std::string> &ours,
                                    const std::vector<std::string> &theirs);

} // namespace tav

// The rows of the directory tree's levels: adding them in order, and the answers that come from the
// workers. Used by views/tree.cpp and tests alone. Main thread only.
#pragma once

#include "views/tree_view.h"

#include <string>
#include <vector>

namespace tav {

// Lets the workers' answers come in; once.
void tree_level_setup();

// Adds the rows of the hotlist in its order.
void tree_level_add_hotlist(TreeView *tree, const std::vector<std::string> &paths);

bool tree_level_is_reading(); // rows of a level are still to come

// Stops reading the level below row; of every level; every question.
void tree_level_drop(TreeItem *row);
void tree_level_drop_all();

// The item is about to go: its question and its level are nobody's.
void tree_level_forget(const TreeItem *item);

} // namespace tav

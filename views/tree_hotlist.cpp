// The hotlist's list; its file is tree_file.cpp.
#include "views/tree_hotlist.h"

#include <algorithm>
#include <unordered_set>

namespace tav {

HotlistTree gTree;
TreeRowHooks gTreeRows;

namespace {

std::unordered_set<std::string> sKnown; // the paths of gTree, so that a lookup is no search

} // namespace

int tree_lookup(const char *path) { return sKnown.count(path) != 0; }

int tree_add(TreeView *tree, const char *path)
{
    if (std::string_view(path).find('\n') != std::string_view::npos)
        return -1;
    if (!sKnown.insert(path).second)
        return -1;
    gTree.paths.emplace_back(path);
    if (tree && gTreeRows.added)
        gTreeRows.added(tree, gTree.paths.back());
    return 0;
}

int tree_remove(TreeView *tree, const char *path)
{
    const std::string gone(path); // the caller's text may be the very entry
    if (sKnown.erase(gone) == 0)
        return 0;
    gTree.paths.erase(std::find(gTree.paths.begin(), gTree.paths.end(), gone));
    if (tree && gTreeRows.removed)
        gTreeRows.removed(tree, gone);
    return 0;
}

int tree_sort(TreeView *tree)
{
    std::sort(gTree.paths.begin(), gTree.paths.end());
    if (tree && gTreeRows.rebuilt)
        gTreeRows.rebuilt(tree);
    return 0;
}

void tree_set_paths(const std::vector<std::string> &paths)
{
    std::vector<std::string> kept;
    kept.reserve(
        2 * paths.size()); // room for as many again, so that adding to a long list moves nothing
    sKnown.clear();
    sKnown.reserve(2 * paths.size());
    for (const std::string &path : paths)
        if (sKnown.insert(path).second)
            kept.push_back(path);
    gTree.paths = std::move(kept);
}

} // namespace tav

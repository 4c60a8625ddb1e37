// The directory tree: its two modes, its rows, and what clicks and keys do.
#include "views/tree.h"

#include "app/config.h"
#include "model/dir.h"
#include "model/es.h"
#include "platform/fonts.h"
#include "platform/shown.h"
#include "platform/w.h"
#include "views/fl.h"
#include "views/tb.h"
#include "views/tree_go.h"
#include "views/tree_level.h"

#include <optional>

namespace tav {

TreeHooks gTreeHooks;

namespace {

TreeView *sTree;
std::optional<std::string> sRootPath; // none in hotlist mode
int sDepth;
TreeItem *sDndItem;
std::string sEntered; // the hotlist path from which the user went deeper

void rows_rebuilt(TreeView *tree)
{
    if (!sRootPath)
        tree_build(tree);
}

void row_added(TreeView *tree, const std::string &path)
{
    if (!sRootPath)
        x_add_item(tree, nullptr, path, false);
}

void row_removed(TreeView *tree, const std::string &path)
{
    if (!sRootPath)
        x_remove_item(tree, path);
}

// The widget goes before the program does when the window is closed.
void forget_tree()
{
    tree_level_drop_all();
    tree_go_forget();
    sTree = nullptr;
    sRootPath.reset();
    sDepth = 0;
    sDndItem = nullptr;
    sEntered.clear();
    gTree.menu_item = nullptr;
}

void connect_tree(TreeView *tree)
{
    QObject::connect(tree, &QTreeWidget::itemExpanded, tree, [tree](QTreeWidgetItem *item) {
        tree_state_cb(tree, static_cast<TreeItem *>(item), true);
    });
    QObject::connect(tree, &QTreeWidget::itemCollapsed, tree, [tree](QTreeWidgetItem *item) {
        tree_state_cb(tree, static_cast<TreeItem *>(item), false);
    });
    QObject::connect(tree, &QTreeWidget::itemClicked, tree, [tree](QTreeWidgetItem *item) {
        tree_selection_cb(tree, static_cast<TreeItem *>(item));
    });
    QObject::connect(tree, &QObject::destroyed, forget_tree);
}

void clear_rows(TreeView *tree)
{
    tree_level_drop_all();
    tree->clear();
}

const TreeItem *top_of(const TreeItem *row)
{
    while (row->parent())
        row = static_cast<const TreeItem *>(row->parent());
    return row;
}

// The row and what is below it, as far as it is expanded.
void gather_expanded(QTreeWidgetItem *row, std::vector<QTreeWidgetItem *> &expanded)
{
    if (!row->isExpanded())
        return;
    expanded.push_back(row);
    for (int i = 0; i < row->childCount(); ++i)
        gather_expanded(row->child(i), expanded);
}

// Puts the row beside the target. It is only moved: the levels below it stay as they are.
void move_row(TreeView *tree, TreeItem *moved, TreeItem *target, bool after)
{
    const QSignalBlocker quiet(tree);
    std::vector<QTreeWidgetItem *> expanded;
    gather_expanded(moved, expanded);
    tree->takeTopLevelItem(tree->indexOfTopLevelItem(moved));
    if (after)
        tree->insertTopLevelItem(tree->indexOfTopLevelItem(target) + 1, moved);
    else
        tree_add_before(tree, moved, target);
    for (QTreeWidgetItem *row : expanded)
        row->setExpanded(true);
}

std::vector<std::string> top_labels(const TreeView *tree)
{
    std::vector<std::string> labels;
    labels.reserve(static_cast<size_t>(tree->topLevelItemCount()));
    for (int i = 0; i < tree->topLevelItemCount(); ++i)
        labels.push_back(static_cast<TreeItem *>(tree->topLevelItem(i))->name);
    return labels;
}

} // namespace

void tree_setup()
{
    sTree = w_find<TreeView>("tree");
    if (!sTree)
        return;
    sTree->setFont(fonts_from_name(gConfig->tree_font, sizeof gConfig->tree_font));
    gTreeRows = {row_added, row_removed, rows_rebuilt};
    tree_level_setup();
    connect_tree(sTree);
}

TreeView *tree_view() { return sTree; }

const char *tree_root() { return sRootPath ? sRootPath->c_str() : nullptr; }

int tree_depth() { return sDepth; }

void tree_build(TreeView *tree)
{
    if (tree->current() && sEntered.empty())
        sEntered = top_of(tree->current())->name;
    clear_rows(tree);
    tree_level_add_hotlist(tree, gTree.paths);
    if (TreeItem *item = sEntered.empty() ? nullptr : x_find_item(tree, sEntered))
        tree->setCurrentItem(item);
    sEntered.clear();
}

void tree_set_contents(TreeView *tree, const char *path)
{
    if (path && sRootPath && *sRootPath == path)
        return;
    if (!path) {
        sRootPath.reset();
        tree_build(tree);
        return;
    }
    const std::string root(path);
    clear_rows(tree);
    sRootPath = root;
    x_tree_expand(tree, nullptr, root.c_str());
}

int x_get_fullpath(const TreeItem *row, std::string &buffer)
{
    if (row->parent())
        x_get_fullpath(static_cast<const TreeItem *>(row->parent()), buffer);
    else if (sRootPath)
        buffer = *sRootPath;
    else {
        buffer = row->name;
        return static_cast<int>(buffer.size());
    }
    if (row->name == "..")
        return es_remove_subdirectory(buffer);
    if (!buffer.ends_with('/'))
        buffer += '/';
    buffer += row->name;
    return static_cast<int>(buffer.size());
}

int x_enter_item(TreeView *tree, TreeItem *row, std::string &buffer)
{
    x_get_fullpath(row, buffer);
    if (row->name == "..") {
        if (--sDepth > 0) {
            tree_set_contents(tree, buffer.c_str());
        } else {
            sDepth = 0;
            tree_set_contents(tree, nullptr);
            buffer.clear();
        }
    } else if (row->look == TreeLook::Expandable) {
        if (!sRootPath)
            sEntered = top_of(row)->name;
        if (top_of(row)->name != "..")
            ++sDepth;
        tree_set_contents(tree, buffer.c_str());
    }
    if (!tree->currentItem() && tree->topLevelItemCount() > 0)
        tree->setCurrentItem(tree->topLevelItem(0)); // the keys go on from the top
    return static_cast<int>(buffer.size());
}

int tree_state_cb(TreeView *tree, TreeItem *row, bool expanded)
{
    if (expanded) {
        if (row->childCount() == 0)
            x_tree_expand(tree, row, nullptr);
        return W_CONTINUE;
    }
    for (QTreeWidgetItem *item = tree->currentItem(); item; item = item->parent())
        if (item->parent() == row)
            tree->setCurrentItem(row); // the cursor does not go down with the rows
    tree_level_drop(row);
    qDeleteAll(row->takeChildren());
    return W_CONTINUE;
}

int tree_selection_cb(TreeView *tree, TreeItem *row)
{
    tree->setCurrentItem(row);
    std::string path;
    x_get_fullpath(row, path);
    if (!path.starts_with('/')) // a line of the file that names no place
        wreport(gBase, "Error", "Directory '%s', not found",
                shown_text(path).toStdString().c_str());
    else if (!gDir.has_path || path != gDir.path)
        tree_go(path, true);
    return W_CONTINUE;
}

int tree_input_cb(TreeView *, TreeItem *row)
{
    sDndItem = row && !row->parent() ? row : nullptr;
    return W_CONTINUE;
}

int tree_add_cb(QWidget *)
{
    std::string path = gDir.path; // a menu beside the rows means the shown directory
    if (gTree.menu_item)
        x_get_fullpath(static_cast<TreeItem *>(gTree.menu_item), path);
    if (path.find('\n') != std::string::npos)
        wreport(gBase, "Error", "'%s' holds a line break and cannot be in the hotlist",
                shown_text(path).toStdString().c_str());
    if (!path.empty()) // as it is while no directory is shown
        tree_add(sTree, path.c_str());
    tb_update();
    return W_CONTINUE;
}

int tree_delete_cb(QWidget *)
{
    if (!gTree.menu_item)
        return W_CONTINUE;
    const std::string label = static_cast<TreeItem *>(gTree.menu_item)->name;
    gTree.menu_item = nullptr;
    tree_remove(sTree, label.c_str());
    tb_update();
    return W_CONTINUE;
}

int tree_outbound_cb(TreeView *) { return sDndItem && !sRootPath ? 0 : -1; }

void tree_add_before(TreeView *tree, TreeItem *item, TreeItem *target)
{
    tree->insertTopLevelItem(tree->indexOfTopLevelItem(target), item);
}

int tree_dnd_cb(TreeView *tree, TreeItem *target, bool after)
{
    TreeItem *moved = sDndItem;
    if (!moved || sRootPath || target->parent() || target == moved)
        return W_CONTINUE;
    move_row(tree, moved, target, after);
    tree_set_paths(top_labels(tree));
    tree->setCurrentItem(moved);
    return W_CONTINUE;
}

TreeItem *tree_dnd_item() { return sDndItem; }

void tree_forget(const TreeItem *item)
{
    tree_level_forget(item);
    if (sDndItem == item)
        sDndItem = nullptr;
    if (gTree.menu_item == item)
        gTree.menu_item = nullptr;
    if (sTree)
        sTree->forget(item);
}

int tree_goto(const char *) { return 0; }

} // namespace tav

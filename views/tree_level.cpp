// The rows of the directory tree's levels. A level is read by a worker; expanding waits for it so
// long as a person would not notice, then the rows come in by a timer and the window goes on. So a
// quick disk looks as if it had been read at once, and one that hangs keeps nobody waiting.
#include "views/tree_level.h"

#include "app/config.h"
#include "platform/ui_gate.h"
#include "platform/w.h"
#include "views/tree.h"
#include "views/tree_jobs.h"

#include <QElapsedTimer>
#include <QHash>
#include <QTimer>
#include <algorithm>
#include <cstring>

namespace tav {

namespace {

constexpr int WAIT_MS = 300; // for a level, with the window blocked
constexpr int LATER_MS = 50; // between looks at levels that take longer

// Levels that take longer, and the row each is below (null: the top level).
struct Reading {
    TreeItem *parent;
    std::shared_ptr<TreeLevel> level;
};
std::vector<Reading> sReading;

QHash<uint64_t, TreeItem *> sAsked; // rows whose question is out
uint64_t sLastQuestion;

bool dot_names() { return gOptions & OPTION_TREE_DOT; }

void take_answers()
{
    for (const TreeProbe &answer : tree_probe_answers())
        if (TreeItem *item = sAsked.take(answer.id)) {
            item->probe = 0;
            x_set_look(item, answer.subdirectories);
        }
}

// Names the question for the row's directory.
TreeProbe question_for(TreeItem *item)
{
    TreeProbe probe{++sLastQuestion, {}, dot_names(), 0};
    x_get_fullpath(item, probe.path);
    if (!probe.path.starts_with('/'))
        probe.path.clear(); // no place: cannot be read, wherever the program stands
    item->probe = probe.id;
    sAsked.insert(probe.id, item);
    return probe;
}

QTreeWidgetItem *parent_of(TreeView *tree, TreeItem *parent)
{
    return parent ? parent : tree->invisibleRootItem();
}

const std::string &name_at(QTreeWidgetItem *parent, int index)
{
    static const std::string none;
    const auto *item = static_cast<TreeItem *>(parent->child(index));
    return item ? item->name : none;
}

// Where a row goes; -1 when sorted and the name is there already. ".." is first, always.
int place_of(QTreeWidgetItem *parent, const std::string &name, bool sorted)
{
    const int count = parent->childCount();
    const int first = count > 0 && name_at(parent, 0) == ".." ? 1 : 0;
    if (name == "..")
        return first && sorted ? -1 : 0;
    if (!sorted)
        return count;
    int low = first, high = count;
    while (low < high) {
        const int middle = (low + high) / 2;
        const int order = name_at(parent, middle).compare(name);
        if (order == 0)
            return -1;
        (order < 0 ? low : high) = order < 0 ? middle + 1 : middle;
    }
    return low;
}

TreeItem *new_row(const TreeRow &row)
{
    auto *item = new TreeItem(row.name);
    x_set_look(item, row.subdirectories);
    return item;
}

// All rows into an empty level, which is quicker than one by one.
void fill_level(QTreeWidgetItem *parent, std::vector<TreeRow> &rows, bool sorted)
{
    if (sorted)
        std::sort(rows.begin(), rows.end(), [](const TreeRow &a, const TreeRow &b) {
            return (a.name == "..") != (b.name == "..") ? a.name == ".." : a.name < b.name;
        });
    else
        std::stable_partition(rows.begin(), rows.end(),
                              [](const TreeRow &row) { return row.name == ".."; });
    if (sorted)
        rows.erase(std::unique(rows.begin(), rows.end(),
                               [](const TreeRow &a, const TreeRow &b) { return a.name == b.name; }),
                   rows.end());
    QList<QTreeWidgetItem *> items;
    items.reserve(static_cast<qsizetype>(rows.size()));
    for (const TreeRow &row : rows)
        items.append(new_row(row));
    parent->addChildren(items);
}

void add_rows(TreeView *tree, TreeItem *parent, std::vector<TreeRow> &rows)
{
    const bool sorted = gOptions & OPTION_TREE_SORTED;
    QTreeWidgetItem *level = parent_of(tree, parent);
    if (level->childCount() == 0)
        return fill_level(level, rows, sorted);
    for (const TreeRow &row : rows) {
        const int place = place_of(level, row.name, sorted);
        if (place >= 0)
            level->insertChild(place, new_row(row));
    }
}

void stop(const Reading &reading)
{
    reading.level->cancel = true;
    if (reading.parent)
        reading.parent->level.reset();
}

// Takes in what the slower levels have found meanwhile.
void look_later(TreeView *tree)
{
    std::vector<Reading> going_on;
    for (const Reading &reading : std::vector<Reading>(sReading)) {
        bool done = false;
        std::vector<TreeRow> rows = tree_level_take(*reading.level, 0, done);
        add_rows(tree, reading.parent, rows);
        if (!done)
            going_on.push_back(reading);
        else if (reading.parent)
            reading.parent->level.reset();
    }
    sReading = going_on;
    if (sReading.empty())
        wtimer_detach(tree);
}

} // namespace

void tree_level_setup()
{
    gTreeProbeNotify = [] { ui_post(take_answers); };
}

void tree_level_add_hotlist(TreeView *tree, const std::vector<std::string> &paths)
{
    QList<QTreeWidgetItem *> items;
    items.reserve(static_cast<qsizetype>(paths.size()));
    for (const std::string &path : paths)
        items.append(new TreeItem(path));
    tree->addTopLevelItems(items);
    std::vector<TreeProbe> questions;
    for (QTreeWidgetItem *item : items)
        questions.push_back(question_for(static_cast<TreeItem *>(item)));
    tree_probe_ask(std::move(questions));
}

TreeItem *x_add_item(TreeView *tree, TreeItem *parent, const std::string &name, bool sorted)
{
    QTreeWidgetItem *level = parent_of(tree, parent);
    const int place = place_of(level, name, sorted);
    if (place < 0)
        return nullptr;
    auto *item = new TreeItem(name);
    level->insertChild(place, item);
    tree_probe_ask({question_for(item)});
    return item;
}

void x_remove_item(TreeView *tree, const std::string &name)
{
    for (int i = 0; i < tree->topLevelItemCount(); ++i)
        if (static_cast<TreeItem *>(tree->topLevelItem(i))->name == name) {
            delete tree->takeTopLevelItem(i);
            return;
        }
}

void x_set_look(TreeItem *item, int subdirectories)
{
    item->look = subdirectories < 0    ? TreeLook::Unreadable
                 : subdirectories == 0 ? TreeLook::Leaf
                                       : TreeLook::Expandable;
    item->setChildIndicatorPolicy(subdirectories > 0 ? QTreeWidgetItem::ShowIndicator
                                                     : QTreeWidgetItem::DontShowIndicator);
    item->changed();
}

void x_tree_expand(TreeView *tree, TreeItem *parent, const char *path)
{
    TreeLevelRequest request{path ? path : "", dot_names(), !parent};
    if (!path)
        x_get_fullpath(parent, request.path);
    // Below a root of "/" every level shows its way back, too.
    request.parent_entry |= tree_root() && strcmp(tree_root(), "/") == 0;
    const Reading reading{parent, tree_level_start(request)};
    wblock(gBase, 1);
    std::vector<TreeRow> all;
    QElapsedTimer clock;
    clock.start();
    bool done = false;
    while (!done && !clock.hasExpired(WAIT_MS)) {
        const int left = static_cast<int>(WAIT_MS - clock.elapsed());
        std::vector<TreeRow> rows = tree_level_take(*reading.level, std::max(left, 0), done);
        all.insert(all.end(), std::make_move_iterator(rows.begin()),
                   std::make_move_iterator(rows.end()));
    }
    add_rows(tree, parent, all);
    wblock(gBase, 0);
    if (done)
        return;
    if (parent)
        parent->level = reading.level;
    sReading.push_back(reading);
    wtimer_attach(tree, LATER_MS, [tree](QObject *) { look_later(tree); });
}

void tree_level_drop(TreeItem *row)
{
    std::erase_if(sReading, [row](const Reading &reading) {
        if (reading.parent == row)
            stop(reading);
        return reading.parent == row;
    });
}

void tree_level_drop_all()
{
    for (const Reading &reading : sReading)
        stop(reading);
    sReading.clear();
    tree_probe_forget();
}

void tree_level_forget(const TreeItem *item)
{
    if (item->probe)
        sAsked.remove(item->probe);
    if (item->level)
        std::erase_if(sReading, [item](const Reading &reading) {
            if (reading.parent == item)
                reading.level->cancel = true;
            return reading.parent == item;
        });
}

} // namespace tav

// The rows of the directory tree's levels. A level is read by a worker; expanding waits for it so
// long as a person would not notice, then the rows come in by a timer and the window goes on. So a
// quick disk looks as if it had been read at once, and one that hangs keeps nobody waiting.
#include "views/tree_level.h"

#include "app/config.h"
#include "platform/ui_gate.h"
#include "views/tree.h"
#include "views/tree_jobs.h"

#include <QHash>
#include <QTimer>
#include <algorithm>
#include <cstring>

namespace tav {

namespace {

constexpr int WAIT_MS = 20;     // for a level: less than anybody sees, enough for a quick disk
constexpr int LATER_MS = 50;    // until the rows of a longer one are taken; then twice as long, ...
constexpr int LATEST_MS = 1000; // ... up to this
constexpr int PIECES_UNTIL = 2000; // rows of a level; the rest comes in one piece, which is quicker

// A level that takes longer, and the row it is below (null: the top level).
struct Reading {
    TreeItem *parent;
    std::shared_ptr<TreeLevel> level;
    std::vector<TreeRow> held; // rows that wait for the end, because the level is long already
};
std::vector<Reading> sReading;
int sLaterMs = LATER_MS; // until the next look at them
bool sLookDue;           // that look is coming

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

bool is_before(const std::string &a, const std::string &b)
{
    return (a == "..") != (b == "..") ? a == ".." : a < b;
}

// Puts sorted rows in between those of a sorted level, whole runs at once; names that are there
// already stay out.
void weave_rows(QTreeWidgetItem *level, const std::vector<TreeRow> &rows)
{
    for (size_t next = 0; next < rows.size();) {
        const int place = place_of(level, rows[next].name, true);
        if (place < 0) {
            ++next;
            continue;
        }
        QList<QTreeWidgetItem *> run;
        do
            run.append(new_row(rows[next]));
        while (++next < rows.size() &&
               (place == level->childCount() || is_before(rows[next].name, name_at(level, place))));
        level->insertChildren(place, run);
    }
}

void add_rows(TreeView *tree, TreeItem *parent, std::vector<TreeRow> &rows)
{
    QTreeWidgetItem *level = parent_of(tree, parent);
    if (gOptions & OPTION_TREE_SORTED) {
        std::sort(rows.begin(), rows.end(),
                  [](const TreeRow &a, const TreeRow &b) { return is_before(a.name, b.name); });
        rows.erase(std::unique(rows.begin(), rows.end(),
                               [](const TreeRow &a, const TreeRow &b) { return a.name == b.name; }),
                   rows.end());
        return weave_rows(level, rows);
    }
    QList<QTreeWidgetItem *> last;
    for (const TreeRow &row : rows)
        if (row.name == "..")
            level->insertChild(0, new_row(row));
        else
            last.append(new_row(row));
    level->addChildren(last);
}

// Takes in what a level has by now, waiting for its end at most so long. True when that was all.
bool take_rows(TreeView *tree, Reading &reading, int milliseconds)
{
    bool done = false;
    std::vector<TreeRow> rows = tree_level_take(*reading.level, milliseconds, done);
    reading.held.insert(reading.held.end(), std::make_move_iterator(rows.begin()),
                        std::make_move_iterator(rows.end()));
    if (done || parent_of(tree, reading.parent)->childCount() < PIECES_UNTIL) {
        add_rows(tree, reading.parent, reading.held);
        reading.held.clear();
    }
    return done;
}

void stop(const Reading &reading)
{
    reading.level->cancel = true;
    if (reading.parent)
        reading.parent->level.reset();
}

// Takes in what the longer levels have found meanwhile.
void look_at_levels()
{
    TreeView *tree = tree_view();
    sLookDue = false;
    std::erase_if(sReading, [tree](Reading &reading) {
        const bool done = take_rows(tree, reading, 0);
        if (done && reading.parent)
            reading.parent->level.reset();
        return done;
    });
    if (sReading.empty())
        sLaterMs = LATER_MS;
}

// A worker has rows, or the last ones.
void rows_wait(bool done)
{
    if (sReading.empty() || (sLookDue && !done))
        return;
    if (done)
        return look_at_levels();
    sLookDue = true;
    QTimer::singleShot(sLaterMs, tree_view(), look_at_levels);
    sLaterMs = std::min(2 * sLaterMs, LATEST_MS);
}

} // namespace

void tree_level_setup()
{
    gTreeProbeNotify = [] { ui_post(take_answers); };
    gTreeLevelNotify = [](bool done) { ui_post([done] { rows_wait(done); }); };
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
    // The workers begin when the loop does: at the start the display server goes first.
    QTimer::singleShot(0, tree, [questions = std::move(questions)]() mutable {
        tree_probe_ask(std::move(questions));
    });
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
    if (TreeItem *item = x_find_item(tree, name))
        delete tree->takeTopLevelItem(tree->indexOfTopLevelItem(item));
}

TreeItem *x_find_item(TreeView *tree, const std::string &name)
{
    for (int i = 0; i < tree->topLevelItemCount(); ++i)
        if (auto *item = static_cast<TreeItem *>(tree->topLevelItem(i)); item->name == name)
            return item;
    return nullptr;
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
    TreeLevelRequest request{path ? path : "", dot_names(), false};
    if (!path)
        x_get_fullpath(parent, request.path);
    // Below a root of "/" every level shows its way back. The top level's is there at once, so that
    // a directory that cannot be read keeps nobody.
    request.parent_entry = parent && tree_root() && strcmp(tree_root(), "/") == 0;
    if (!parent && dot_names())
        x_add_item(tree, nullptr, "..", true);
    Reading reading{parent, tree_level_start(request), {}};
    if (take_rows(tree, reading, WAIT_MS))
        return;
    if (parent)
        parent->level = reading.level;
    sReading.push_back(std::move(reading));
}

bool tree_level_is_reading() { return !sReading.empty(); }

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
    sLaterMs = LATER_MS;
    sLookDue = false; // a look that is coming finds nothing
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

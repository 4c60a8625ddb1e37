// A disk that hangs hangs whoever opens a directory of it, so a worker does that first. The window
// goes on meanwhile.
#include "views/tree_go.h"

#include "model/dir.h"
#include "platform/shown.h"
#include "platform/ui_gate.h"
#include "platform/w.h"
#include "platform/worker.h"
#include "views/fl.h"
#include "views/tree.h"
#include "views/tree_jobs.h"

#include <chrono>
#include <map>
#include <memory>

namespace tav {

namespace {

constexpr auto WAIT = std::chrono::milliseconds(200); // the window stands still no longer than that

// Shared by the worker that opens a directory and whoever waits for it.
struct Opening {
    std::mutex mutex;
    std::condition_variable came;
    bool open = false;      // it can be shown now; under the mutex
    bool abandoned = false; // nobody waits, it has to be told; under the mutex
};

// What the user wants to see.
struct Wanted {
    std::string path;
    std::string from; // what was shown then
    bool keep_focus;
};
Wanted sWanted;
bool sWaiting;                                             // sWanted is waited for
std::map<std::string, std::shared_ptr<Opening>> sOpenings; // that have not come back, by their path

void show(const Wanted &wanted)
{
    TreeView *tree = tree_view();
    const bool had_focus = wanted.keep_focus && tree && tree->hasFocus();
    fl_newpath(tree, wanted.path.c_str());
    if (had_focus)
        wfocus(tree_view());
}

void opened(const std::string &path)
{
    sOpenings.erase(path);
    if (!sWaiting || sWanted.path != path)
        return;
    sWaiting = false;
    if (gBase && gDir.path == sWanted.from)
        show(Wanted(sWanted));
}

void open_it(const std::string &path, Opening &opening)
{
    if (DIR *dir = gTreeCalls.open(path.c_str()))
        closedir(dir);
    const std::lock_guard lock(opening.mutex);
    opening.open = true;
    opening.came.notify_all();
    if (opening.abandoned)
        ui_post([path] { opened(path); });
}

// Whether the directory can be opened without waiting any longer.
bool answers(const std::string &path)
{
    if (sOpenings.count(path) != 0)
        return false; // asked before, and once is enough
    auto opening = std::make_shared<Opening>();
    if (worker_start([path, opening] { open_it(path, *opening); }) != 0)
        return true;
    std::unique_lock lock(opening->mutex);
    if (opening->came.wait_for(lock, WAIT, [&opening] { return opening->open; }))
        return true;
    opening->abandoned = true;
    sOpenings.emplace(path, opening);
    return false;
}

} // namespace

void tree_go(const std::string &path, bool keep_focus)
{
    sWanted = {path, gDir.path, keep_focus};
    sWaiting = path.starts_with('/') && !answers(path);
    if (!sWaiting)
        return show(Wanted(sWanted));
    wprintf(w_find("status1"), "Waiting for '%s'", shown_text(path).toUtf8().constData());
}

bool tree_go_is_waiting() { return sWaiting; }

void tree_go_forget() { sWaiting = false; }

} // namespace tav

// Telling the marks of cut files: see slot_done.h.
#include "fileops/slot_done.h"

#include "platform/ui_gate.h"

#include <cstring>
#include <mutex>

namespace tav {
namespace {

struct Done {
    std::string directory;
    std::string name;
};

std::mutex sMutex; // over sDone

// What the main thread has not taken yet. Never freed: a job's thread may outlive the main one.
std::vector<Done> &sDone = *new std::vector<Done>;

// On the main thread: everything that came since.
void x_take()
{
    std::vector<Done> taken;
    {
        std::lock_guard hold(sMutex);
        taken.swap(sDone);
    }
    if (!gFopHooks.uncut)
        return;
    for (const Done &done : taken)
        gFopHooks.uncut(done.directory.c_str(), done.name.c_str());
}

} // namespace

void slot_item_done(FileOp *job, const char *directory, const char *name)
{
    if (std::strcmp(directory, job->groups[0]->dir) != 0)
        return;
    bool first = false;
    {
        std::lock_guard hold(sMutex);
        first = sDone.empty();
        sDone.push_back({directory, name});
    }
    if (first)
        ui_post(x_take);
}

} // namespace tav

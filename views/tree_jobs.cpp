// The tree's workers.
#include "views/tree_jobs.h"

#include "model/fs.h"
#include "platform/pool.h"
#include "platform/worker.h"

#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <utility>

namespace tav {

void (*gTreeProbeNotify)();
void (*gTreeLevelNotify)(bool done);
TreeCalls gTreeCalls = {fs_path_has_subdirectories, opendir};

namespace {

// The pool's threads share it with the main thread. Never freed: one that hangs may come back when
// the program ends.
struct Probes {
    Pool pool;
    std::mutex mutex;
    std::vector<TreeProbe> answers; // under the mutex
};

Probes &probes()
{
    static auto *only = new Probes;
    return *only;
}

unsigned fs_flags(bool dot_names) { return dot_names ? FS_DOT_NAMES : 0; }

void answer(TreeProbe &probe)
{
    probe.subdirectories =
        gTreeCalls.has_subdirectories(nullptr, probe.path.c_str(), fs_flags(probe.dot_names));
    bool first;
    {
        const std::lock_guard lock(probes().mutex);
        probes().answers.push_back(std::move(probe));
        first = probes().answers.size() == 1;
    }
    if (first && gTreeProbeNotify)
        gTreeProbeNotify();
}

bool is_wanted(const TreeLevelRequest &request, const char *name)
{
    if (name[0] != '.')
        return true;
    if (strcmp(name, ".") == 0 || !request.dot_names)
        return false;
    return strcmp(name, "..") != 0 || request.parent_entry;
}

// Links are followed: a link to a directory is one. What the directory itself says is believed.
bool is_directory(int fd, const struct dirent *entry)
{
    if (entry->d_type != DT_LNK && entry->d_type != DT_UNKNOWN)
        return entry->d_type == DT_DIR;
    struct stat status;
    return fstatat(fd, entry->d_name, &status, 0) == 0 && S_ISDIR(status.st_mode);
}

void tell(const TreeLevel &level, bool done)
{
    if (gTreeLevelNotify && !level.cancel)
        gTreeLevelNotify(done);
}

void add_row(TreeLevel &level, TreeRow row)
{
    bool first;
    {
        const std::lock_guard lock(level.mutex);
        level.rows.push_back(std::move(row));
        first = level.rows.size() == 1;
    }
    if (first)
        tell(level, false);
}

void end_level(TreeLevel &level)
{
    {
        const std::lock_guard lock(level.mutex);
        level.done = true;
        level.changed.notify_all();
    }
    tell(level, true);
}

void read_level(TreeLevel &level, const TreeLevelRequest &request)
{
    DIR *dir = gTreeCalls.open(request.path.c_str());
    while (dir && !level.cancel) {
        const struct dirent *entry = readdir(dir);
        if (!entry)
            break;
        if (!is_wanted(request, entry->d_name) || !is_directory(dirfd(dir), entry))
            continue;
        const int subdirectories = gTreeCalls.has_subdirectories(
            request.path.c_str(), entry->d_name, fs_flags(request.dot_names));
        add_row(level, {entry->d_name, subdirectories});
    }
    if (dir)
        closedir(dir);
    end_level(level);
}

} // namespace

std::shared_ptr<TreeLevel> tree_level_start(const TreeLevelRequest &request)
{
    auto level = std::make_shared<TreeLevel>();
    if (worker_start([level, request] { read_level(*level, request); }) != 0)
        level->done = true;
    return level;
}

std::vector<TreeRow> tree_level_take(TreeLevel &level, int milliseconds, bool &done)
{
    std::unique_lock lock(level.mutex);
    level.changed.wait_for(lock, std::chrono::milliseconds(milliseconds),
                           [&level] { return level.done; });
    done = level.done;
    std::vector<TreeRow> rows;
    rows.swap(level.rows);
    return rows;
}

void tree_probe_ask(std::vector<TreeProbe> questions)
{
    for (TreeProbe &question : questions)
        pool_ask(probes().pool, [question = std::move(question)]() mutable { answer(question); });
}

void tree_probe_forget() { pool_forget(probes().pool); }

std::vector<TreeProbe> tree_probe_answers()
{
    const std::lock_guard lock(probes().mutex);
    return std::exchange(probes().answers, {});
}

} // namespace tav

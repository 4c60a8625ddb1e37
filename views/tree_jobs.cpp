// The tree's workers.
#include "views/tree_jobs.h"

#include "model/fs.h"
#include "platform/worker.h"

#include <chrono>
#include <cstring>
#include <deque>
#include <fcntl.h>
#include <sys/stat.h>

namespace tav {

void (*gTreeProbeNotify)();
void (*gTreeLevelNotify)(bool done);
TreeCalls gTreeCalls = {fs_path_has_subdirectories, opendir};

namespace {

constexpr auto HUNG_AFTER =
    std::chrono::milliseconds(200); // no question begun meanwhile: one more worker

// All of it under the mutex. Never freed: a worker that hangs may come back when the program ends.
struct ProbePool {
    std::mutex mutex;
    std::condition_variable begun; // a question was taken off the queue
    std::deque<TreeProbe> questions;
    std::vector<TreeProbe> answers;
    int workers = 0;      // threads that run
    uint64_t taken = 0;   // questions taken off so far
    bool watched = false; // the watching thread runs
};

ProbePool &pool()
{
    static auto *only = new ProbePool;
    return *only;
}

unsigned fs_flags(bool dot_names) { return dot_names ? FS_DOT_NAMES : 0; }

// Answers questions until there are none.
void probe_work()
{
    ProbePool &p = pool();
    std::unique_lock lock(p.mutex);
    while (!p.questions.empty()) {
        TreeProbe probe = std::move(p.questions.front());
        p.questions.pop_front();
        ++p.taken;
        p.begun.notify_all();
        lock.unlock();
        probe.subdirectories =
            gTreeCalls.has_subdirectories(nullptr, probe.path.c_str(), fs_flags(probe.dot_names));
        lock.lock();
        p.answers.push_back(std::move(probe));
        if (p.answers.size() == 1 && gTreeProbeNotify) {
            lock.unlock();
            gTreeProbeNotify();
            lock.lock();
        }
    }
    --p.workers;
    p.begun.notify_all();
}

// Under the mutex.
bool start_worker(ProbePool &p)
{
    ++p.workers;
    if (worker_start(probe_work) == 0)
        return true;
    --p.workers;
    return false;
}

// While questions wait: one more worker whenever the others seem to hang.
void probe_watch()
{
    ProbePool &p = pool();
    std::unique_lock lock(p.mutex);
    while (!p.questions.empty()) {
        const uint64_t taken = p.taken;
        const bool moved = p.begun.wait_for(
            lock, HUNG_AFTER, [&p, taken] { return p.taken != taken || p.questions.empty(); });
        if (!moved && p.workers < TREE_WORKERS_MAX)
            start_worker(p);
    }
    p.watched = false;
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
    ProbePool &p = pool();
    const std::lock_guard lock(p.mutex);
    for (TreeProbe &question : questions)
        p.questions.push_back(std::move(question));
    while (p.workers < TREE_WORKERS && p.workers < static_cast<int>(p.questions.size()))
        if (!start_worker(p))
            break;
    if (!p.watched && !p.questions.empty())
        p.watched = worker_start(probe_watch) == 0;
}

void tree_probe_forget()
{
    ProbePool &p = pool();
    const std::lock_guard lock(p.mutex);
    p.questions.clear();
    p.begun.notify_all();
}

std::vector<TreeProbe> tree_probe_answers()
{
    ProbePool &p = pool();
    const std::lock_guard lock(p.mutex);
    std::vector<TreeProbe> answers;
    answers.swap(p.answers);
    return answers;
}

} // namespace tav

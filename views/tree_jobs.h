// What the tree's workers find out on the disk: the directories of a level, and whether a directory
// has subdirectories. Knows no Qt and no widget. Hanging disks hang their worker, nobody else.
//
// Levels: one detached thread each, which appends rows to a record under its mutex until it is done
// or told to stop. Probes: a pool of threads works them off; their answers stand in a queue.
// Whoever puts the first row or answer into an empty place calls the notifier, once per batch.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <dirent.h>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace tav {

// A directory of a level.
struct TreeRow {
    std::string name;
    int subdirectories; // as fs_path_has_subdirectories answers
};

// Which names a level has.
struct TreeLevelRequest {
    std::string path;  // of the directory to read
    bool dot_names;    // names that begin with "." are listed, and count as subdirectories
    bool parent_entry; // ".." is listed, when dot_names says so too
};

// A level being read; shared by the reader and whoever waits for it.
struct TreeLevel {
    std::mutex mutex;
    std::condition_variable changed;  // it is done
    std::vector<TreeRow> rows;        // found and not yet taken; under the mutex
    bool done = false;                // under the mutex
    std::atomic<bool> cancel = false; // set by the main thread: stop, nobody waits
};

// Starts reading. Never null; when no thread could be started the level is done and empty.
std::shared_ptr<TreeLevel> tree_level_start(const TreeLevelRequest &request);

// Takes the rows found so far, after waiting until all are, at most milliseconds. done tells
// whether these were the last.
std::vector<TreeRow> tree_level_take(TreeLevel &level, int milliseconds, bool &done);

// Question and answer about one directory.
struct TreeProbe {
    uint64_t id;      // names the question; 0 is none
    std::string path; // of the directory
    bool dot_names;
    int subdirectories; // the answer, as fs_path_has_subdirectories gives it
};

// Called on a worker: answers wait and none did before; rows wait and none did before, or (done)
// the last ones are there. Set before the first question and the first level.
extern void (*gTreeProbeNotify)();
extern void (*gTreeLevelNotify)(bool done);

void tree_probe_ask(std::vector<TreeProbe> questions);
void tree_probe_forget();                    // drops the questions that nobody has begun
std::vector<TreeProbe> tree_probe_answers(); // takes what is answered

// What the workers ask the system; tests put calls of their own here, for disks that hang.
struct TreeCalls {
    int (*has_subdirectories)(const char *parent, const char *name, unsigned flags);
    DIR *(*open)(const char *path);
};
extern TreeCalls gTreeCalls;

} // namespace tav

// Child processes: starting them cleanly and never leaving a zombie. A child gets default signal
// dispositions, an empty mask, a process group of its own and none of our descriptors but 0, 1
// and 2. Starting costs the same however much memory the program uses. Any thread.
#pragma once

#include <functional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace tav {

// What to start. argv must hold at least one text; the child receives exactly these bytes.
struct ChildStart {
    const char *program = nullptr;    // path of the file to execute
    std::vector<std::string> argv;    // argv[0] first
    const char *directory = nullptr;  // working directory of the child; null: ours
    std::vector<std::string> set_env; // "NAME=value" that replace or join our environment
    int descriptors[3] = {0, 1, 2};   // what becomes the child's 0, 1 and 2
};

// Starts it and returns the pid at once, -1 with errno when it cannot be executed (ENOENT, EACCES,
// ENOEXEC, E2BIG ...). Who starts a child must wait for it or hand it to child_keep.
pid_t child_start(const ChildStart &start);

using ChildEnded = std::function<void(pid_t pid, int status)>;

// Takes over the waiting: child_reap collects the child when it ends and then calls ended (may be
// empty) with its wait status.
void child_keep(pid_t pid, ChildEnded ended);

// Told of each kept child, on the thread that keeps it, so that the main loop can call child_reap
// in time.
extern void (*gChildKept)(pid_t pid);

// Collects what has ended of the kept children, without waiting; other children are left to their
// owners. Returns how many kept ones still run.
int child_reap();

// Whether the child, not yet waited for, is stopped because it wants the terminal (SIGTTIN,
// SIGTTOU).
bool child_wants_terminal(pid_t pid);

// Whether that is a file which may be executed.
bool child_is_program(const std::string &path);

// The file that a command name means: name itself when it holds a "/", else the first executable
// file of that name along path ("PATH" when null). Relative parts of the path do not
// count: the directory shown must not decide what runs. Empty when there is none, with errno.
std::string child_find_program(const std::string &name, const char *path);

} // namespace tav

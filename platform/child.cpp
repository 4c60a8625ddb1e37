// Starting children with posix_spawn, which shares the memory until the new program is there, and
// collecting those that nobody waits for.
#include "platform/child.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <mutex>
#include <spawn.h>
#include <string_view>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tav {

void (*gChildKept)(pid_t pid);

namespace {

struct Kept {
    pid_t pid;
    ChildEnded ended;
};

struct Children {
    std::mutex mutex;       // guards kept
    std::vector<Kept> kept; // that child_reap collects
};

Children &sChildren = *new Children; // never freed: a worker may outlive the main thread

bool x_same_name(const char *entry, const std::string &setting)
{
    size_t length = setting.find('=');
    return length != setting.npos && std::strncmp(entry, setting.c_str(), length + 1) == 0;
}

// Our environment with some settings replaced, as execve takes it. Pointers into both.
std::vector<char *> x_environment(const std::vector<std::string> &set_env)
{
    std::vector<char *> out;
    for (char **entry = environ; entry != nullptr && *entry != nullptr; entry++) {
        bool replaced = false;
        for (const std::string &setting : set_env)
            replaced = replaced || x_same_name(*entry, setting);
        if (!replaced)
            out.push_back(*entry);
    }
    for (const std::string &setting : set_env)
        out.push_back(const_cast<char *>(setting.c_str()));
    out.push_back(nullptr);
    return out;
}

// What happens in the child before the program: descriptors, directory. 0 or an error number.
int x_set_actions(posix_spawn_file_actions_t *actions, const ChildStart &start, const int *source)
{
    int error = 0;
    for (int i = 0; i < 3 && error == 0; i++) {
        if (source[i] != i)
            error = posix_spawn_file_actions_adddup2(actions, source[i], i);
    }
    if (error == 0)
        error = posix_spawn_file_actions_addclosefrom_np(actions, 3);
    if (error == 0 && start.directory != nullptr)
        error = posix_spawn_file_actions_addchdir_np(actions, start.directory);
    return error;
}

int x_set_attributes(posix_spawnattr_t *attributes)
{
    sigset_t all, none;
    sigfillset(&all);
    sigemptyset(&none);
    int error = posix_spawnattr_setsigdefault(attributes, &all);
    if (error == 0)
        error = posix_spawnattr_setsigmask(attributes, &none);
    if (error == 0)
        error = posix_spawnattr_setpgroup(attributes, 0);
    constexpr short flags = POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETPGROUP;
    return error ? error : posix_spawnattr_setflags(attributes, flags);
}

// 0 and the pid, or an error number.
int x_spawn(pid_t *pid, const ChildStart &start, const int *source)
{
    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
    int error = posix_spawn_file_actions_init(&actions);
    if (error != 0)
        return error;
    error = posix_spawnattr_init(&attributes);
    if (error == 0) {
        error = x_set_actions(&actions, start, source);
        error = error ? error : x_set_attributes(&attributes);
        std::vector<char *> argv;
        for (const std::string &argument : start.argv)
            argv.push_back(const_cast<char *>(argument.c_str()));
        argv.push_back(nullptr);
        std::vector<char *> env = x_environment(start.set_env);
        if (error == 0)
            error = posix_spawn(pid, start.program, &actions, &attributes, argv.data(), env.data());
        posix_spawnattr_destroy(&attributes);
    }
    posix_spawn_file_actions_destroy(&actions);
    return error;
}

} // namespace

pid_t child_start(const ChildStart &start)
{
    // A source among the first three could be overwritten before its turn: move it out of the way.
    int source[3];
    int moved[3] = {-1, -1, -1};
    for (int i = 0; i < 3; i++) {
        source[i] = start.descriptors[i];
        if (source[i] != i && source[i] < 3)
            source[i] = moved[i] = fcntl(source[i], F_DUPFD_CLOEXEC, 3);
    }
    pid_t pid = -1;
    int error = start.argv.empty() ? EINVAL : x_spawn(&pid, start, source);
    for (int descriptor : moved) {
        if (descriptor >= 0)
            close(descriptor);
    }
    errno = error;
    return error == 0 ? pid : -1;
}

void child_keep(pid_t pid, ChildEnded ended)
{
    {
        std::lock_guard lock(sChildren.mutex);
        sChildren.kept.push_back({pid, std::move(ended)});
    }
    if (gChildKept != nullptr)
        gChildKept(pid);
}

int child_reap()
{
    struct Gone {
        Kept child;
        int status;
    };
    std::vector<Gone> gone;
    size_t left = 0;
    {
        std::lock_guard lock(sChildren.mutex);
        std::vector<Kept> running;
        for (Kept &child : sChildren.kept) {
            int status = 0;
            pid_t answer = waitpid(child.pid, &status, WNOHANG);
            if (answer == child.pid)
                gone.push_back({std::move(child), status});
            else if (answer == 0 || errno == EINTR)
                running.push_back(std::move(child));
        }
        sChildren.kept.swap(running);
        left = sChildren.kept.size();
    }
    for (const Gone &one : gone) {
        if (one.child.ended)
            one.child.ended(one.child.pid, one.status);
    }
    return static_cast<int>(left);
}

bool child_wants_terminal(pid_t pid)
{
    siginfo_t info = {};
    if (waitid(P_PID, static_cast<id_t>(pid), &info, WSTOPPED | WNOHANG | WNOWAIT) != 0)
        return false;
    bool stopped = info.si_pid == pid && info.si_code == CLD_STOPPED;
    return stopped && (info.si_status == SIGTTIN || info.si_status == SIGTTOU);
}

bool child_is_program(const std::string &path)
{
    struct stat info;
    return stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode) &&
           access(path.c_str(), X_OK) == 0;
}

std::string child_find_program(const std::string &name, const char *path)
{
    errno = ENOENT;
    if (name.empty() || name.find('/') != name.npos)
        return name;
    const char *listed = path ? path : std::getenv("PATH");
    std::string_view rest = listed ? listed : "";
    int error = ENOENT;
    while (!rest.empty()) {
        size_t end = rest.find(':');
        std::string_view part = rest.substr(0, end);
        rest.remove_prefix(end == rest.npos ? rest.size() : end + 1);
        std::string file = std::string(part) + "/" + name;
        if (part.starts_with('/') && child_is_program(file))
            return file;
        if (part.starts_with('/') && access(file.c_str(), F_OK) == 0)
            error = EACCES;
    }
    errno = error;
    return {};
}

} // namespace tav

// The list of open streams and the start of their commands. A record is in the list before its
// command runs, with pid -1; whoever closes it takes it out first.
#include "commands/pipe.h"

#include "platform/child.h"

#include <cerrno>
#include <fcntl.h>
#include <memory>
#include <mutex>
#include <new>
#include <sys/wait.h>
#include <unistd.h>

namespace tav {

namespace {

struct PipeRecord {
    std::unique_ptr<PipeRecord> next;
    FILE *stream; // our end; null while starting
    pid_t pid;    // of the shell; -1 while starting
};

std::mutex popen_mutex; // guards popen_list

// The last opened first. Never freed: a worker may outlive the main thread.
std::unique_ptr<PipeRecord> &popen_list = *new std::unique_ptr<PipeRecord>;

// Null when memory is out.
PipeRecord *x_link()
{
    std::unique_ptr<PipeRecord> record(new (std::nothrow) PipeRecord{nullptr, nullptr, -1});
    if (!record)
        return nullptr;
    std::lock_guard lock(popen_mutex);
    record->next = std::move(popen_list);
    popen_list = std::move(record);
    return popen_list.get();
}

// Takes out the record that fits; null when there is none.
template <typename Fits>
std::unique_ptr<PipeRecord> x_unlink(Fits fits)
{
    std::lock_guard lock(popen_mutex);
    for (auto *link = &popen_list; *link; link = &(*link)->next) {
        if (!fits(**link))
            continue;
        std::unique_ptr<PipeRecord> record = std::move(*link);
        *link = std::move(record->next);
        return record;
    }
    return nullptr;
}

void x_forget(const PipeRecord *record)
{
    x_unlink([record](const PipeRecord &other) { return &other == record; });
}

std::unique_ptr<PipeRecord> x_unlink_stream(const FILE *stream)
{
    return x_unlink(
        [stream](const PipeRecord &record) { return record.stream == stream && record.pid != -1; });
}

// The shell of the system's own search path.
std::string x_shell()
{
    char path[1025];
    size_t length = confstr(_CS_PATH, path, sizeof path);
    std::string shell;
    if (length > 0 && length <= sizeof path)
        shell = child_find_program("sh", path);
    return shell.empty() ? "/bin/sh" : shell;
}

// Starts the shell with the child's end of the pipe in place. The pid, or -1 with errno.
pid_t x_start_shell(const char *command, int end, bool reads)
{
    std::string shell = x_shell();
    ChildStart start;
    start.program = shell.c_str();
    start.argv = {"sh", "-c", command};
    start.descriptors[reads ? 1 : 0] = end;
    return child_start(start);
}

} // namespace

FILE *popen(const char *command, const char *mode)
{
    if (mode == nullptr || (mode[0] != 'r' && mode[0] != 'w')) {
        errno = EINVAL;
        return nullptr;
    }
    bool reads = mode[0] == 'r';
    PipeRecord *record = x_link();
    if (record == nullptr) {
        errno = ENOMEM;
        return nullptr;
    }
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) {
        const int error = errno;
        x_forget(record);
        errno = error;
        return nullptr;
    }
    int ours = ends[reads ? 0 : 1];
    int theirs = ends[reads ? 1 : 0];
    FILE *stream = fdopen(ours, mode);
    pid_t pid = stream ? x_start_shell(command, theirs, reads) : -1;
    int error = errno;
    close(theirs);
    if (pid < 0) {
        x_forget(record);
        if (stream != nullptr)
            fclose(stream);
        else
            close(ours);
        errno = error;
        return nullptr;
    }
    std::lock_guard lock(popen_mutex);
    record->stream = stream;
    record->pid = pid;
    return stream;
}

int pclose(FILE *stream)
{
    std::unique_ptr<PipeRecord> record = x_unlink_stream(stream);
    if (!record) {
        errno = EINVAL;
        return -1;
    }
    fclose(stream);
    int status = -1;
    pid_t answer;
    do {
        answer = waitpid(record->pid, &status, 0);
    } while (answer < 0 && errno == EINTR);
    return answer < 0 ? -1 : status;
}

void pipe_drop(FILE *stream)
{
    std::unique_ptr<PipeRecord> record = x_unlink_stream(stream);
    if (!record)
        return;
    fclose(stream);
    child_keep(record->pid, {});
}

} // namespace tav

// Names of hidden siblings: ".tav-MACHINE-PID-COUNT". What a process left behind when it was killed
// is removed by the next job that needs a sibling in that directory; those of other machines or
// process spaces, whose processes cannot be seen from here, are left alone.
#include "fileops/fop_copy.h"

#include "fileops/fop_sys.h"

#include <csignal>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace tav {
namespace {

constexpr size_t READ_SIZE = 32768; // of one reading of a directory

// A number for this machine and its process space.
uint32_t x_machine()
{
    static const uint32_t sMachine = [] {
        uint32_t hash = 2166136261u;
        auto add = [&](const void *data, size_t size) {
            for (size_t i = 0; i < size; i++)
                hash = (hash ^ static_cast<const unsigned char *>(data)[i]) * 16777619u;
        };
        char id[64];
        int fd = ::open("/etc/machine-id", O_RDONLY | O_CLOEXEC);
        ssize_t length = fd == -1 ? -1 : ::read(fd, id, sizeof id);
        if (length > 0)
            add(id, static_cast<size_t>(length));
        if (fd != -1)
            ::close(fd);
        struct stat space;
        if (::stat("/proc/self/ns/pid", &space) == 0)
            add(&space.st_ino, sizeof space.st_ino);
        return hash;
    }();
    return sMachine;
}

// Whether a name is that of a sibling whose process is gone.
bool x_is_left(const char *name)
{
    unsigned machine;
    int pid, end = 0;
    unsigned count;
    if (std::sscanf(name, ".tav-%8x-%d-%u%n", &machine, &pid, &count, &end) != 3 ||
        name[end] != '\0')
        return false;
    return machine == x_machine() && pid > 0 && ::kill(pid, 0) == -1 && errno == ESRCH;
}

} // namespace

std::string fop_temp_name()
{
    static std::atomic<unsigned> sCount{0};
    char name[64];
    std::snprintf(name, sizeof name, ".tav-%08x-%d-%u", x_machine(), static_cast<int>(::getpid()),
                  ++sCount);
    return name;
}

namespace {

void x_sweep(int dir)
{
    int fd = fop_retry([&] { return gFopSys.openat(dir, ".", O_RDONLY | O_DIRECTORY, 0); });
    std::vector<char> buffer(fd == -1 ? 0 : READ_SIZE);
    ssize_t size = 0;
    while (fd != -1 && (size = gFopSys.getdents(fd, buffer.data(), buffer.size())) > 0) {
        for (ssize_t at = 0; at < size;) {
            const char *name = fop_sys_entry(buffer.data(), at).name;
            if (name[0] == '.' && x_is_left(name))
                gFopSys.unlinkat(dir, name, 0);
        }
    }
    fop_close(fd);
}

} // namespace

void fop_sweep_temps(FileOp *job, int dir)
{
    int error = errno;
    struct stat status;
    if (gFopSys.fstat(dir, &status) == 0 && job->dirs->swept != fop_id(status)) {
        job->dirs->swept = fop_id(status);
        x_sweep(dir);
    }
    errno = error;
}

} // namespace tav

// Directories to measure on, what makes them cold, and the bare loop that reading them is compared
// with.
#include "bench/bench.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <filesystem>
#include <map>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <system_error>
#include <unistd.h>

namespace tav {

namespace {

// Removes what was made when the program ends.
struct Scratch {
    std::map<std::string, std::string> made; // what was asked for, and where it is
    std::string path[2];                     // by BenchPlace
    ~Scratch()
    {
        for (const std::string &root : path) {
            std::error_code error;
            if (!root.empty())
                std::filesystem::remove_all(root, error);
        }
    }
};
Scratch sScratch;

[[noreturn]] void x_die(const std::string &what)
{
    std::perror(what.c_str());
    std::exit(1);
}

// A number between 0 and 2^32 that looks like no order, the same in every run.
unsigned x_mixed(unsigned i)
{
    i = (i ^ (i >> 16)) * 0x45d9f3bU;
    i = (i ^ (i >> 16)) * 0x45d9f3bU;
    return i ^ (i >> 16);
}

void x_make_file(int dir, const char *name, unsigned mixed)
{
    int fd = openat(dir, name, O_CREAT | O_WRONLY | O_CLOEXEC, 0644);
    if (fd == -1)
        x_die(name);
    timespec times[2] = {};
    times[0].tv_sec = times[1].tv_sec = 1500000000 + static_cast<time_t>(mixed % 200000000U);
    if (ftruncate(fd, mixed % 3000000U) == -1 || futimens(fd, times) == -1)
        x_die(name);
    close(fd);
}

void x_make_entry(int dir, const BenchFiles &files, unsigned i, std::string &last_file)
{
    unsigned mixed = x_mixed(i + 1);
    unsigned percent = mixed % 100;
    char name[64];
    std::snprintf(name, sizeof name, "%08x_entry_%u.dat", mixed, i);
    if (percent < static_cast<unsigned>(files.directories)) {
        if (mkdirat(dir, name, 0755) == -1)
            x_die(name);
    } else if (percent < static_cast<unsigned>(files.directories + files.links) &&
               !last_file.empty()) {
        if (symlinkat(last_file.c_str(), dir, name) == -1)
            x_die(name);
    } else {
        x_make_file(dir, name, x_mixed(mixed));
        last_file = name;
    }
}

struct Dirent64 { // as the kernel fills it in
    ino64_t ino;
    off64_t offset;
    unsigned short length;
    unsigned char type;
    char name[1];
};

long long x_stat_names(int fd, const char *buffer, long bytes)
{
    long long total = 0;
    for (long at = 0; at < bytes;) {
        const auto *entry = reinterpret_cast<const Dirent64 *>(buffer + at);
        struct stat info;
        if (fstatat(fd, entry->name, &info, 0) == 0)
            total += info.st_size;
        at += entry->length;
    }
    return total;
}

} // namespace

const std::string &bench_scratch(BenchPlace place)
{
    std::string &path = sScratch.path[place == BenchPlace::Memory];
    if (!path.empty())
        return path;
    const char *disk = std::getenv("TAV_BENCH_DIR");
    path = place == BenchPlace::Memory ? "/dev/shm" : disk ? disk : "/var/tmp";
    path += "/tav_bench_XXXXXX";
    if (!mkdtemp(path.data()))
        x_die(path);
    return path;
}

const std::string &bench_directory(const BenchFiles &files, BenchPlace place)
{
    std::string key = std::to_string(files.count) + "_" + std::to_string(files.directories) + "_" +
                      std::to_string(files.links) + (place == BenchPlace::Memory ? "_m" : "_d");
    auto found = sScratch.made.find(key);
    if (found != sScratch.made.end())
        return found->second;
    std::string path = bench_scratch(place) + "/" + key;
    if (mkdir(path.c_str(), 0755) == -1)
        x_die(path);
    int dir = open(path.c_str(), O_DIRECTORY | O_RDONLY | O_CLOEXEC);
    if (dir == -1)
        x_die(path);
    std::string last_file;
    for (int i = 0; i < files.count; i++)
        x_make_entry(dir, files, static_cast<unsigned>(i), last_file);
    close(dir);
    return sScratch.made[key] = path;
}

namespace {

constexpr char DROP[] = "/proc/sys/vm/drop_caches";

void x_forget_contents(const std::string &path)
{
    int fd = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC);
    if (fd == -1)
        return;
    fsync(fd);
    posix_fadvise(fd, 0, 0, POSIX_FADV_DONTNEED);
    close(fd);
}

} // namespace

const char *bench_cold() { return access(DROP, W_OK) == 0 ? "_cold" : "_cold_contents"; }

void bench_forget(const std::string &path)
{
    sync();
    int drop = open(DROP, O_WRONLY | O_CLOEXEC);
    bool dropped = drop != -1 && write(drop, "3", 1) == 1;
    if (drop != -1)
        close(drop);
    if (dropped)
        return;
    x_forget_contents(path);
    std::error_code error;
    for (const auto &entry : std::filesystem::recursive_directory_iterator(path, error)) {
        if (entry.is_regular_file(error) && !entry.is_symlink(error))
            x_forget_contents(entry.path().string());
    }
}

void bench_touch_memory(size_t bytes)
{
    const auto page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    const auto free = static_cast<size_t>(sysconf(_SC_AVPHYS_PAGES)) * page;
    bytes = std::min(bytes, free / 8 * 7);
    if (bytes == 0)
        return;
    void *memory = mmap(nullptr, bytes, PROT_READ | PROT_WRITE,
                        MAP_PRIVATE | MAP_ANONYMOUS | MAP_POPULATE, -1, 0);
    if (memory != MAP_FAILED)
        munmap(memory, bytes);
}

long long bench_getdents_loop(const char *path)
{
    alignas(Dirent64) static char buffer[32768];
    int fd = open(path, O_DIRECTORY | O_RDONLY | O_CLOEXEC);
    if (fd == -1)
        return -1;
    long long total = 0;
    long bytes;
    while ((bytes = syscall(SYS_getdents64, fd, buffer, sizeof buffer)) > 0)
        total += x_stat_names(fd, buffer, bytes);
    close(fd);
    bench_keep(total);
    return bytes == 0 ? total : -1;
}

} // namespace tav

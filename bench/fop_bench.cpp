// The job engine beside the tools that do the same: cp, rename, rm, find.
#include "bench/bench.h"
#include "fileops/fop_dirs.h"
#include "fileops/fop_internal.h"
#include "fileops/fop_sys.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <fstream>
#include <malloc.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tav {
namespace {

constexpr int SMALL_FILES = 20'000;
constexpr int SCANNED = 200'000;
constexpr int REMEMBERED = 1'000'000;
constexpr size_t NAME_BYTES = 20;
constexpr off_t LARGE = off_t{2} << 30;

const FopReport REPORT = {
    [](FileOp *, const FopAlert &alert) {
        std::fprintf(stderr, "%s", alert.text.c_str());
        return alert.on_close;
    },
    [](FileOp *, const char *, const char *text) { std::fprintf(stderr, "%s\n", text); },
    nullptr,
    nullptr,
    nullptr,
};

FileOp *x_job(int op, const std::string &source, const std::vector<std::string> &names,
              const std::string &dest)
{
    std::vector<const char *> list;
    list.reserve(names.size());
    for (const std::string &name : names)
        list.push_back(name.c_str());
    FopRequest request;
    request.op = op;
    request.source_dir = source.c_str();
    request.count = static_cast<int>(list.size());
    request.names = list.data();
    request.dest = dest.c_str();
    request.flags = FOP_LINKS;
    request.report = &REPORT;
    return fop_create(request);
}

void x_run_job(int op, const std::string &source, const std::vector<std::string> &names,
               const std::string &dest)
{
    fop_thread(x_job(op, source, names, dest));
}

// Runs a program and waits for it. Whether it went well.
bool x_program(const std::vector<std::string> &words)
{
    std::vector<char *> argv;
    argv.reserve(words.size() + 1);
    for (const std::string &word : words)
        argv.push_back(const_cast<char *>(word.c_str()));
    argv.push_back(nullptr);
    pid_t child = ::vfork();
    if (child == 0) {
        ::execvp(argv[0], argv.data());
        ::_exit(127);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    if (status != 0)
        std::fprintf(stderr, "%s failed\n", words[0].c_str());
    return status == 0;
}

void x_remove(const std::string &path) { x_program({"rm", "-rf", path}); }

// Small files in directories of a hundred.
void x_make_small(const std::string &top, int files)
{
    char bytes[8192];
    std::memset(bytes, 'x', sizeof bytes);
    ::mkdir(top.c_str(), 0755);
    for (int i = 0; i < files; i++) {
        std::string dir = top + "/directory" + std::to_string(i / 100);
        if (i % 100 == 0)
            ::mkdir(dir.c_str(), 0755);
        std::string name = dir + "/file" + std::to_string(i);
        int fd = ::open(name.c_str(), O_CREAT | O_WRONLY, 0644);
        [[maybe_unused]] ssize_t n = ::write(fd, bytes, static_cast<size_t>(i * 37 % 8193));
        ::close(fd);
    }
}

void x_make_large(const std::string &path)
{
    std::vector<char> bytes(1 << 20);
    int fd = ::open(path.c_str(), O_CREAT | O_WRONLY, 0644);
    for (off_t at = 0; at < LARGE; at += static_cast<off_t>(bytes.size())) {
        std::memset(bytes.data(), static_cast<int>(at >> 20), bytes.size());
        [[maybe_unused]] ssize_t n = ::write(fd, bytes.data(), bytes.size());
    }
    ::close(fd);
}

// One row: with what was used last in memory, or, on a disk, cold.
struct Measure {
    BenchRow row;
    BenchPlace place;
    bool cold;
    size_t memory; // that is made ready for the kernel's copies of the files
};

// The wanted rows of one measure. name: without the place.
std::vector<Measure> x_measures(const std::string &name, BenchPlace place, double limit,
                                int pairs = 5, size_t memory = 0)
{
    bool disk = place == BenchPlace::Disk;
    const std::string warm = name + (disk ? "_disk" : "_tmpfs");
    std::vector<Measure> wanted;
    if (bench_wants(warm))
        wanted.push_back({{warm, limit, pairs}, place, false, memory});
    if (disk && bench_wants(warm + bench_cold()))
        wanted.push_back({{warm + bench_cold(), limit, pairs}, place, true, memory});
    return wanted;
}

// Before each run of either side the disk is at rest; a cold run then finds nothing in memory.
void x_compare(const Measure &measure, const std::string &source, BenchSide ours, BenchSide other)
{
    for (BenchSide *side : {&ours, &other}) {
        side->prepare = [&measure, &source, prepare = side->prepare] {
            if (prepare)
                prepare();
            if (measure.cold)
                bench_forget(source);
            else if (measure.place == BenchPlace::Disk)
                ::sync();
            bench_touch_memory(measure.memory);
        };
    }
    bench_compare(measure.row, ours, other);
}

// Small files are all copied first and removed last: a disk's file system is slow at making what
// was just removed. Of a large file there is no room for many.
void x_copy_row(const Measure &measure, const std::string &scratch, const std::string &name,
                bool keep)
{
    static int sTurn = 0;
    std::vector<std::string> made;
    const std::string source = scratch + "/" + name;
    auto next = [&] {
        made.push_back(scratch + "/copy" + std::to_string(sTurn++));
        ::mkdir(made.back().c_str(), 0755);
    };
    auto drop = [&] {
        if (!keep)
            x_remove(made.back());
    };
    BenchSide ours{next, [&] { x_run_job(FOP_COPY, scratch, {name}, made.back()); }, drop};
    BenchSide cp{next, [&] { x_program({"cp", "-a", source, made.back()}); }, drop};
    x_compare(measure, source, ours, cp);
    for (const std::string &path : made)
        x_remove(path);
}

void x_small(BenchPlace place)
{
    const std::vector<Measure> measures = x_measures("copy_small", place, 1.2);
    if (measures.empty())
        return;
    const std::string &scratch = bench_scratch(place);
    x_make_small(scratch + "/small", SMALL_FILES);
    for (const Measure &measure : measures)
        x_copy_row(measure, scratch, "small", true);
    x_remove(scratch + "/small");
}

void x_large(BenchPlace place)
{
    const std::vector<Measure> measures = x_measures("copy_large", place, 1.05, 5, 5 * LARGE);
    if (measures.empty())
        return;
    const std::string &scratch = bench_scratch(place);
    x_make_large(scratch + "/large");
    for (const Measure &measure : measures)
        x_copy_row(measure, scratch, "large", false);
    x_remove(scratch + "/large");
}

// A file system that clones, in a file, where this user may mount one. False with a word when not.
bool x_mount_clone(const std::string &image, const std::string &top)
{
    int fd = ::open(image.c_str(), O_CREAT | O_RDWR | O_CLOEXEC, 0600);
    bool made = fd != -1 && ::ftruncate(fd, 3 * LARGE) == 0;
    if (fd != -1)
        ::close(fd);
    ::mkdir(top.c_str(), 0755);
    if (made && x_program({"mkfs.xfs", "-q", image}) &&
        x_program({"mount", "-o", "loop", image, top}))
        return true;
    std::fprintf(stderr, "copy_clone is not measured: no file system that clones can be mounted\n");
    return false;
}

void x_clone()
{
    const std::vector<Measure> measures = x_measures("copy_clone", BenchPlace::Disk, 1.2, 15);
    if (measures.empty())
        return;
    const std::string image = bench_scratch(BenchPlace::Disk) + "/image";
    const std::string top = bench_scratch(BenchPlace::Disk) + "/clone";
    if (x_mount_clone(image, top)) {
        x_make_large(top + "/large");
        ::mkdir((top + "/to").c_str(), 0755);
        auto drop = [&] { x_remove(top + "/to/large"); };
        BenchSide ours{{}, [&] { x_run_job(FOP_COPY, top, {"large"}, top + "/to"); }, drop};
        BenchSide cp{{},
                     [&] {
                         x_program({"cp", "-a", "--reflink=always", top + "/large", top + "/to"});
                     },
                     drop};
        for (const Measure &measure : measures)
            x_compare(measure, top + "/large", ours, cp);
        x_program({"umount", top});
    }
    ::unlink(image.c_str());
}

void x_move(BenchPlace place)
{
    const std::vector<Measure> measures = x_measures("move", place, 1.5);
    if (measures.empty())
        return;
    const std::string top = bench_scratch(place);
    std::string from = top + "/from", to = top + "/to";
    ::mkdir(from.c_str(), 0755);
    ::mkdir(to.c_str(), 0755);
    std::vector<std::string> names;
    for (int i = 0; i < SMALL_FILES; i++) {
        names.push_back("file" + std::to_string(i));
        ::close(::open((from + "/" + names.back()).c_str(), O_CREAT | O_WRONLY, 0644));
    }
    auto turn = [&] { from.swap(to); };
    BenchSide ours{{}, [&] { x_run_job(FOP_MOVE, from, names, to); }, turn};
    BenchSide loop{{},
                   [&] {
                       for (const std::string &name : names) {
                           if (::rename((from + "/" + name).c_str(), (to + "/" + name).c_str()) !=
                               0)
                               std::perror("rename");
                       }
                   },
                   turn};
    for (const Measure &measure : measures)
        x_compare(measure, top, ours, loop);
}

// All trees are made first, for the reason above.
void x_delete(BenchPlace place)
{
    const std::string &top = bench_scratch(place);
    const std::vector<Measure> measures = x_measures("delete", place, 1.2);
    std::vector<std::string> trees;
    for (const Measure &measure : measures) {
        for (int i = 0; i < 2 * bench_runs(measure.row); i++) {
            trees.push_back("tree" + std::to_string(trees.size()));
            x_make_small(top + "/" + trees.back(), SMALL_FILES);
        }
    }
    std::string tree;
    auto next = [&] {
        tree = trees.back();
        trees.pop_back();
    };
    BenchSide ours{next, [&] { x_run_job(FOP_DELETE, top, {tree}, ""); }, {}};
    BenchSide rm{next, [&] { x_program({"rm", "-rf", top + "/" + tree}); }, {}};
    for (const Measure &measure : measures)
        x_compare(measure, top, ours, rm);
}

void x_scan()
{
    const std::vector<Measure> measures = x_measures("scan_200000", BenchPlace::Disk, 1.2);
    if (measures.empty())
        return;
    const std::string top = bench_scratch(BenchPlace::Disk) + "/scan";
    x_make_small(top, 0);
    for (int i = 0; i < SCANNED; i++) {
        std::string dir = top + "/directory" + std::to_string(i / 1000);
        if (i % 1000 == 0)
            ::mkdir(dir.c_str(), 0755);
        ::close(::open((dir + "/file" + std::to_string(i)).c_str(), O_CREAT | O_WRONLY, 0644));
    }
    BenchSide ours{{},
                   [&] {
                       FileOp *job =
                           x_job(FOP_COPY, bench_scratch(BenchPlace::Disk), {"scan"}, "/tmp");
                       fop_build_filelist(job);
                       bench_keep(job->total_bytes);
                       fop_free(job);
                   },
                   {}};
    BenchSide find{{}, [&] { x_program({"find", top, "-fprintf", "/dev/null", "%s\n"}); }, {}};
    for (const Measure &measure : measures)
        x_compare(measure, top, ours, find);
    x_remove(top);
}

size_t x_allocated()
{
    struct mallinfo2 info = ::mallinfo2();
    return info.uordblks + info.hblkhd;
}

void x_memory()
{
    BenchRow row{"memory_1000000", 5.0, 1};
    if (!bench_wants(row.name))
        return;
    const std::string top = bench_scratch(BenchPlace::Memory) + "/many";
    ::mkdir(top.c_str(), 0755);
    int at = ::open(top.c_str(), O_PATH | O_DIRECTORY);
    ::close(::openat(at, "first", O_CREAT | O_WRONLY, 0644));
    for (int i = 0; i < REMEMBERED; i++) {
        char name[NAME_BYTES + 1];
        std::snprintf(name, sizeof name, "%0*d", static_cast<int>(NAME_BYTES), i);
        ::close(::openat(at, name, O_CREAT | O_WRONLY, 0644));
    }
    ::close(at);
    size_t before = x_allocated();
    FileOp *job = x_job(FOP_MOVE, bench_scratch(BenchPlace::Memory), {"many"}, "/tmp");
    fop_build_filelist(job);
    for (int g = 0; g < job->n_groups; g++) // a move keeps a stamp of each
        fop_alloc(job, static_cast<size_t>(job->groups[g]->count) * sizeof(uint64_t));
    size_t used = x_allocated() - before;
    bench_report(row, static_cast<double>(used), static_cast<double>(REMEMBERED * NAME_BYTES));
    fop_free(job);
    x_remove(top);
}

} // namespace
} // namespace tav

int main(int argc, char **argv)
{
    using namespace tav;
    bench_start(argc, argv);
    gFopSys.delay = [](unsigned) {};
    for (BenchPlace place : {BenchPlace::Memory, BenchPlace::Disk}) {
        x_small(place);
        x_large(place);
        x_move(place);
    }
    x_clone();
    x_scan();
    for (BenchPlace place : {BenchPlace::Memory, BenchPlace::Disk})
        x_delete(place);
    x_memory();
    return 0;
}

// Jobs whose process is killed at random instants. "TAV_KILLS" says how often, per kind of job.
#include "fop_driver.h"

#include <csignal>
#include <filesystem>
#include <random>
#include <sys/wait.h>
#include <unistd.h>

namespace tav {
namespace {

constexpr int KILLS = 40;        // per kind of job, unless the environment says otherwise
constexpr int FILES = 12;        // of a tree
constexpr int LONGEST_US = 2500; // after which a job has mostly ended

struct KillRow {
    const char *name;
    int op;
    bool across;
    bool taken; // the destination has files of the same names
};

void PrintTo(const KillRow &row, std::ostream *out) { *out << row.name; }

int x_kills()
{
    const char *kills = std::getenv("TAV_KILLS");
    return kills ? std::atoi(kills) : KILLS;
}

std::string x_name(int i) { return (i % 3 ? "d/file" : "d/e/file") + std::to_string(i); }
std::string x_content(int i) { return std::string(static_cast<size_t>(i * i * 300 + 1), 'a'); }

void x_make(const JobDir &dir, bool taken)
{
    dir.dir("src/d/e");
    dir.dir("dst");
    if (taken)
        dir.dir("dst/d/e");
    for (int i = 0; i < FILES; i++) {
        dir.file("src/" + x_name(i), x_content(i));
        if (taken)
            dir.file("dst/" + x_name(i), "old");
    }
}

// Starts the job in a process of its own and kills it after so many microseconds.
void x_run_and_kill(const JobDir &dir, const KillRow &row, int microseconds)
{
    int ready[2];
    ASSERT_EQ(::pipe(ready), 0);
    pid_t child = ::fork();
    if (child == 0) {
        Driver driver;
        if (row.across)
            sys_two_file_systems();
        [[maybe_unused]] ssize_t told = ::write(ready[1], "r", 1);
        driver.run(row.op, dir / "src", {"d"}, dir / "dst", FOP_OVERWRITE);
        ::_exit(0);
    }
    char byte;
    ASSERT_EQ(::read(ready[0], &byte, 1), 1);
    ::close(ready[0]);
    ::close(ready[1]);
    timespec pause{0, microseconds * 1000L};
    ::nanosleep(&pause, nullptr); // the instant of the kill is what the test is about
    ::kill(child, SIGKILL);
    int status;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
}

void x_check(const JobDir &dir, const KillRow &row)
{
    auto src = dir.all("src"), dst = dir.all("dst");
    size_t known = 0;
    for (int i = 0; i < FILES; i++) {
        std::string name = x_name(i), content = "file " + x_content(i);
        bool in_src = src.count(name) && src[name] == content;
        bool in_dst = dst.count(name) && dst[name] == content;
        bool old = row.taken && dst[name] == "file old";
        EXPECT_TRUE(in_src || (in_dst && row.op == FOP_MOVE)) << name << " is lost";
        EXPECT_TRUE(in_dst || old || !dst.count(name)) << name << " is half there";
        known += dst.count(name);
    }
    known += dst.count("d") + dst.count("d/e");
    for (auto &[name, content] : dst) {
        // Between getting a hidden name and replacing what it stands beside, a file is complete.
        if (row.taken && name.find("/.tav-") != std::string::npos) {
            EXPECT_EQ(content.find_first_not_of('a', 5), std::string::npos) << name;
            known++;
        }
    }
    EXPECT_EQ(dst.size(), known) << "something is left over";
}

struct FopKill : testing::TestWithParam<KillRow> {};

TEST_P(FopKill, loses_nothing_and_leaves_nothing)
{
    std::mt19937 random(20240607);
    const KillRow &row = GetParam();
    JobDir dir("/dev/shm");
    for (int i = 0; i < x_kills() && !HasFailure(); i++) {
        int after = static_cast<int>(random() % LONGEST_US);
        SCOPED_TRACE(testing::Message() << "kill " << i << " after " << after << " microseconds");
        x_make(dir, row.taken);
        x_run_and_kill(dir, row, after);
        x_check(dir, row);
        if (row.taken) { // the next job clears what may be left
            Driver driver;
            driver.run(FOP_COPY, dir / "src", {"d"}, dir / "dst", FOP_OVERWRITE);
            for (auto &[name, content] : dir.all("dst"))
                EXPECT_EQ(name.find(".tav-"), std::string::npos) << name;
        }
        for (const char *name : {"src", "dst"})
            std::filesystem::remove_all(dir / name);
    }
}

INSTANTIATE_TEST_SUITE_P(Jobs, FopKill,
                         testing::Values(KillRow{"copy", FOP_COPY, false, false},
                                         KillRow{"copy_over", FOP_COPY, false, true},
                                         KillRow{"move_across", FOP_MOVE, true, false},
                                         KillRow{"move_across_over", FOP_MOVE, true, true},
                                         KillRow{"move", FOP_MOVE, false, false}),
                         [](const auto &row) { return row.param.name; });

} // namespace
} // namespace tav

// Every system call of a job fails in turn, with every error and every answer to the questions that
// follow. Afterwards every byte that was there is still somewhere, nothing else changed, no
// descriptor stays open and no temporary file is left.
#include "fop_driver.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <set>

namespace tav {
namespace {

constexpr int ERRORS[] = {EIO, EACCES, ENOSPC, EINTR, ENOENT, EMFILE};

struct FaultRow {
    const char *name;
    int op;
    bool across; // a move that has to copy
};

struct FopFault : testing::TestWithParam<FaultRow> {};

void x_make_tree(const JobDir &dir)
{
    dir.dir("src/d/e");
    dir.file("src/d/a", "alpha");
    dir.file("src/d/e/large", std::string(70'000, 'L'));
    dir.file("src/b", "new");
    dir.link("src/l", "d/a");
    dir.fifo("src/f");
    dir.dir("dst");
    dir.file("dst/b", "old");
    dir.file("dst/other", "mine");
    dir.dir("outside");
    dir.file("outside/x", "precious");
}

void x_clear(const JobDir &dir)
{
    for (const char *name : {"src", "dst", "outside"})
        std::filesystem::remove_all(dir / name);
}

// What may be said of the tree after any job that may have failed anywhere. overwritten: the answer
// allowed it.
void x_check(const JobDir &dir, const FaultRow &row, bool overwritten)
{
    auto src = dir.all("src"), dst = dir.all("dst");
    EXPECT_EQ(dir.read("outside/x"), "precious");
    EXPECT_EQ(dst["other"], "file mine");
    const std::map<std::string, std::string> files = {
        {"d/a", "file alpha"},
        {"d/e/large", "file " + std::string(70'000, 'L')},
        {"b", "file new"}};
    for (const auto &[name, content] : files) {
        bool in_src = src.count(name) && src[name] == content;
        bool in_dst = dst.count(name) && dst[name] == content;
        bool kept = row.op == FOP_DELETE || in_src || (in_dst && row.op == FOP_MOVE);
        EXPECT_TRUE(kept) << name << " is lost";
        EXPECT_TRUE(in_src || !src.count(name)) << name << " changed";
        EXPECT_TRUE(in_dst || !dst.count(name) || name == "b") << name << " is half there";
    }
    EXPECT_TRUE(dst["b"] == "file old" || (overwritten && dst["b"] == "file new"))
        << "the overwritten file is neither old nor new: " << dst["b"];
    static const std::set<std::string> sKnown = {"b",         "d", "d/a", "d/e",
                                                 "d/e/large", "f", "l",   "other"};
    for (const auto &[name, content] : dst)
        EXPECT_TRUE(sKnown.count(name)) << name << " is left over";
    for (const auto &[name, content] : src)
        EXPECT_TRUE(sKnown.count(name)) << name << " is left over";
}

// Runs the job with the call number n failing; how many calls it made.
long x_run(const JobDir &dir, const FaultRow &row, long n, int error, int answer)
{
    x_make_tree(dir);
    Driver driver;
    if (row.across)
        sys_two_file_systems();
    Faults::install();
    int asked = 0;
    driver.on_alert = [&](const FopAlert &alert) {
        EXPECT_LT(++asked, 1000) << "the job asks for ever";
        return std::min(answer, static_cast<int>(alert.labels.size()));
    };
    driver.on_created = [&](FileOp &) { Faults::arm(n, error); };
    int before = open_descriptors();
    std::vector<std::string> names = {"d", "b", "l", "f"};
    if (row.op == FOP_DELETE)
        driver.remove(dir, names);
    else
        driver.run(row.op, dir / "src", names, dir / "dst", FOP_LINKS);
    EXPECT_EQ(open_descriptors(), before);
    EXPECT_EQ(driver.removed, 1);
    long calls = Faults::calls();
    x_check(dir, row, answer >= 2 || row.op == FOP_MOVE);
    return calls;
}

TEST_P(FopFault, loses_nothing)
{
    const FaultRow &row = GetParam();
    JobDir dir("/dev/shm");
    for (int error : ERRORS) {
        for (int answer = 1; answer <= 4; answer++) {
            long calls = 1;
            for (long n = 0; n < calls && !HasFailure(); n++) {
                SCOPED_TRACE(testing::Message() << "call " << n << " " << std::strerror(error)
                                                << ", answer " << answer);
                calls = x_run(dir, row, n, error, answer);
                if (HasFailure())
                    ADD_FAILURE() << "it was " << (Faults::failed() ? Faults::failed() : "none");
                x_clear(dir);
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Jobs, FopFault,
                         testing::Values(FaultRow{"copy", FOP_COPY, false},
                                         FaultRow{"move", FOP_MOVE, false},
                                         FaultRow{"move_across", FOP_MOVE, true},
                                         FaultRow{"remove", FOP_DELETE, false}),
                         [](const auto &row) { return row.param.name; });

} // namespace
} // namespace tav

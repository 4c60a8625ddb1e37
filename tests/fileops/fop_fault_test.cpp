// Every system call of a job fails in turn, with every error and every answer to the questions that
// follow. Afterwards every byte that was there is still somewhere, nothing else changed, no
// descriptor stays open and no temporary file is left.
#include "fop_driver.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <set>

namespace tav {
namespace {

constexpr int ERRORS[] = {EIO, EACCES, ENOSPC, EINTR, ENOENT, EMFILE};

struct FaultRow {
    const char *name;
    int op;
    bool across;        // a move that has to copy
    bool plain = false; // on a simple file system
};

void PrintTo(const FaultRow &row, std::ostream *out) { *out << row.name; }

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
    // What is replaced in its place, or by way of a hidden name.
    dir.file("src/p", "new");
    dir.file("dst/p", "old");
    ASSERT_EQ(::link((dir / "dst/p").c_str(), (dir / "dst/q").c_str()), 0);
    dir.fifo("dst/f");
    dir.link("dst/l", "elsewhere");
}

void x_clear(const JobDir &dir)
{
    for (const char *name : {"src", "dst", "outside"})
        std::filesystem::remove_all(dir / name);
}

// How a job is made to fail: call n, with that error, once or for ever; and what is answered.
struct Fault {
    long n;
    int error;
    int answer;
    bool for_ever = false;
    bool overwrites(const FaultRow &row) const { return answer >= 2 || row.op == FOP_MOVE; }
};

using Tree = std::map<std::string, std::string>;

void x_check_contents(const FaultRow &row, Tree &src, Tree &dst)
{
    const Tree files = {{"d/a", "file alpha"},
                        {"d/e/large", "file " + std::string(70'000, 'L')},
                        {"b", "file new"},
                        {"p", "file new"}};
    for (const auto &[name, content] : files) {
        bool in_src = src.count(name) && src[name] == content;
        bool in_dst = dst.count(name) && dst[name] == content;
        bool kept = row.op == FOP_DELETE || in_src || (in_dst && row.op == FOP_MOVE);
        bool taken = name == "b" || name == "p"; // held something before
        EXPECT_TRUE(kept) << name << " is lost";
        EXPECT_TRUE(in_src || !src.count(name)) << name << " changed";
        EXPECT_TRUE(in_dst || !dst.count(name) || taken) << name << " is half there";
    }
}

// What was there before is there, or something whole stands for it.
void x_check_replaced(const FaultRow &row, const Fault &fault, Tree &dst)
{
    bool overwritten = fault.overwrites(row);
    EXPECT_TRUE(dst["b"] == "file old" || (overwritten && dst["b"] == "file new"))
        << "the overwritten file is neither old nor new: " << dst["b"];
    EXPECT_EQ(dst["f"], "fifo");
    std::set<std::string> link = {"link elsewhere", "link d/a"};
    if (row.op == FOP_MOVE)
        link.insert("file alpha"); // after the first skip a move follows links
    EXPECT_TRUE(link.count(dst["l"])) << dst["l"];
    // In place: its other name shows what was begun; what is incomplete does not keep the real one.
    std::set<std::string> in_place = {"file old"};
    if (overwritten)
        in_place.insert({"file new", "file "});
    EXPECT_TRUE(in_place.count(dst["q"])) << dst["q"];
    bool whole = !dst.count("p") || dst["p"] == "file old" || dst["p"] == "file new";
    EXPECT_TRUE(whole || fault.for_ever) << dst["p"];
}

// What may be said of the tree after any job that may have failed anywhere.
void x_check(const JobDir &dir, const FaultRow &row, const Fault &fault)
{
    Tree src = dir.all("src"), dst = dir.all("dst");
    EXPECT_EQ(dir.read("outside/x"), "precious");
    EXPECT_EQ(dst["other"], "file mine");
    x_check_contents(row, src, dst);
    x_check_replaced(row, fault, dst);
    static const std::set<std::string> sKnown = {"b", "d", "d/a", "d/e",   "d/e/large",
                                                 "f", "l", "p",   "other", "q"};
    for (const Tree *tree : {&src, &dst}) {
        for (const auto &[name, content] : *tree)
            EXPECT_TRUE(sKnown.count(name) || fault.for_ever) << name << " is left over";
    }
}

// Runs the job with that fault; how many calls it made.
long x_run(const JobDir &dir, const FaultRow &row, const Fault &fault)
{
    x_make_tree(dir);
    Driver driver;
    Attributes attributes(dir);
    attributes.set(dir / "src/d/a", "user.colour", "blue");
    attributes.set(dir / "src/d/e", "user.colour", "blue");
    if (row.across)
        sys_two_file_systems();
    Faults::install();
    int asked = 0;
    driver.on_alert = [&](const FopAlert &alert) {
        EXPECT_LT(++asked, 1000) << "the job asks for ever";
        return asked < 1000 ? std::min(fault.answer, static_cast<int>(alert.labels.size()))
                            : alert.on_close;
    };
    driver.on_created = [&](FileOp &) { Faults::arm(fault.n, fault.error, fault.for_ever); };
    int before = open_descriptors();
    std::vector<std::string> names = {"d", "b", "l", "f", "p"};
    if (row.op == FOP_DELETE)
        driver.remove(dir, names);
    else
        driver.run(row.op, dir / "src", names, dir / "dst", FOP_LINKS);
    EXPECT_EQ(open_descriptors(), before);
    EXPECT_EQ(driver.removed, 1);
    long calls = Faults::calls();
    x_check(dir, row, fault);
    return calls;
}

// Every call in turn, until there is none that could fail.
void x_run_all(const FaultRow &row, Fault fault)
{
    JobDir dir("/dev/shm");
    long calls = 1;
    for (fault.n = 0; fault.n < calls && !testing::Test::HasFailure(); fault.n++) {
        SCOPED_TRACE(testing::Message() << "call " << fault.n << " " << std::strerror(fault.error)
                                        << ", answer " << fault.answer);
        calls = std::max(calls, x_run(dir, row, fault)); // an early failure ends the job early
        if (testing::Test::HasFailure())
            ADD_FAILURE() << "it was " << (Faults::failed() ? Faults::failed() : "none");
        x_clear(dir);
    }
}

TEST_P(FopFault, loses_nothing)
{
    for (int error : ERRORS) {
        for (int answer = 1; answer <= 4; answer++)
            x_run_all(GetParam(), {0, error, answer});
    }
}

// A disk that goes away: nothing works any more from some call on, not even removing what was
// begun.
TEST_P(FopFault, loses_nothing_when_everything_fails_from_there_on)
{
    for (int error : ERRORS) {
        for (int answer : {1, 4}) {             // going on and giving up
            if (error != ENOSPC || answer != 1) // else it would be tried again for ever
                x_run_all(GetParam(), {0, error, answer, true});
        }
    }
}

// Something of that kind is to go where somebody's file is, and the user never says that it may.
struct TakenRow {
    const char *name;
    void (*make)(const JobDir &dir); // "src/x", and "dst/x" in its way
    int believed = 0;                // an error that may be believed: that a link leads nowhere
};

void PrintTo(const TakenRow &row, std::ostream *out) { *out << row.name; }

struct FopTaken : testing::TestWithParam<TakenRow> {};

// A file system that has neither unnamed files nor a rename that replaces nothing.
void x_make_plain()
{
    gFopSys.openat = [](int at, const char *path, int flags, mode_t mode) {
        if ((flags & O_TMPFILE) != O_TMPFILE)
            return gFopSysReal.openat(at, path, flags, mode);
        errno = EOPNOTSUPP;
        return -1;
    };
    sys_replacing_renames();
}

long x_run_taken(const JobDir &dir, const FaultRow &row, long n, int error)
{
    Driver driver;
    if (row.across)
        sys_two_file_systems();
    else if (row.plain)
        x_make_plain();
    Faults::install();
    driver.on_alert = [](const FopAlert &) { return 1; }; // "&Skip", "&Continue"
    driver.on_created = [&](FileOp &) { Faults::arm(n, error); };
    const Tree before = dir.all();
    driver.run(row.op, dir / "src", {"x"}, dir / "dst", FOP_LINKS);
    EXPECT_EQ(dir.all(), before) << (Faults::failed() ? Faults::failed() : "none") << ", call " << n
                                 << ", " << std::strerror(error);
    return Faults::calls();
}

TEST_P(FopTaken, nothing_is_replaced_unasked_whatever_fails)
{
    for (const FaultRow &row :
         {FaultRow{"copy", FOP_COPY, false}, FaultRow{"move", FOP_MOVE, false},
          FaultRow{"move_across", FOP_MOVE, true}, FaultRow{"plain_copy", FOP_COPY, false, true},
          FaultRow{"plain_move", FOP_MOVE, false, true}}) {
        SCOPED_TRACE(row.name);
        JobDir dir("/dev/shm");
        dir.dir("src");
        dir.dir("dst");
        GetParam().make(dir);
        for (int error : ERRORS) {
            // That nothing is there has to be believed where a rename cannot tell.
            bool believed = error == GetParam().believed || (row.plain && error == ENOENT);
            long calls = believed ? 0 : 1;
            for (long n = 0; n < calls && !HasFailure(); n++)
                calls = std::max(calls, x_run_taken(dir, row, n, error));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Jobs, FopTaken,
                         testing::Values(TakenRow{"file",
                                                  [](const JobDir &dir) {
                                                      dir.file("src/x", "new");
                                                      dir.file("dst/x", "old");
                                                  }},
                                         TakenRow{"link",
                                                  [](const JobDir &dir) {
                                                      dir.link("src/x", "somewhere");
                                                      dir.file("dst/x", "old");
                                                  }},
                                         TakenRow{"fifo",
                                                  [](const JobDir &dir) {
                                                      dir.fifo("src/x");
                                                      dir.file("dst/x", "old");
                                                  }},
                                         TakenRow{"file_onto_a_link",
                                                  [](const JobDir &dir) {
                                                      dir.file("src/x", "new");
                                                      dir.file("other", "old");
                                                      dir.link("dst/x", "../other");
                                                  },
                                                  ENOENT}),
                         [](const auto &row) { return row.param.name; });

INSTANTIATE_TEST_SUITE_P(Jobs, FopFault,
                         testing::Values(FaultRow{"copy", FOP_COPY, false},
                                         FaultRow{"move", FOP_MOVE, false},
                                         FaultRow{"move_across", FOP_MOVE, true},
                                         FaultRow{"remove", FOP_DELETE, false}),
                         [](const auto &row) { return row.param.name; });

} // namespace
} // namespace tav

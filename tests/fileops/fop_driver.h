// Runs whole jobs without a window: answers their questions from a list, keeps what they reported,
// and lets the Nth system call fail.
#pragma once

#include "fileops/fop.h"
#include "fileops/fop_sys.h"

#include <deque>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace tav {

// A directory of a test's own, removed with all its contents.
struct JobDir {
    std::string path;

    // Below the directory for temporary files, or below an existing one.
    explicit JobDir(const char *below = nullptr);
    ~JobDir();
    JobDir(const JobDir &) = delete;
    JobDir &operator=(const JobDir &) = delete;

    std::string operator/(const std::string &name) const { return path + "/" + name; }
    void dir(const std::string &name, mode_t mode = 0755) const;
    void file(const std::string &name, const std::string &content, mode_t mode = 0644) const;
    void link(const std::string &name, const std::string &target) const;
    void fifo(const std::string &name, mode_t mode = 0644) const;
    bool exists(const std::string &name) const; // a link counts by itself
    std::string read(const std::string &name) const;
    struct stat status(const std::string &name) const; // of a link itself
    // Every path below name (null: all) with its kind, and content where it has any.
    std::map<std::string, std::string> all(const std::string &name = "") const;
};

// Puts the system calls back as they are at the end of a test.
struct SysGuard {
    SysGuard();
    ~SysGuard();
};

// Drives one job after another.
struct Driver {
    FopReport report;
    SysGuard sys;
    std::deque<int> answers;                       // to the next questions; then the closing answer
    std::function<int(const FopAlert &)> on_alert; // instead of answers
    std::function<bool(const std::string &, const std::string &, FopPlace &)> on_long_name;
    std::function<void(const FopUpdate &)> on_update;
    std::function<void(FileOp &)> on_created;
    std::vector<FopAlert> alerts;
    std::vector<std::string> notices; // "title: text"
    std::vector<std::string> done;    // paths told to on_done
    std::vector<std::string> titles;  // titles shown, one after another
    std::string last_from;            // the slot's from line at the end
    int removed = 0;                  // jobs that were marked removed
    uint32_t last_flags = 0;
    int64_t n_done = 0, n_items = 0, total_bytes = 0, done_bytes = 0; // of the job at its end
    bool finished_done = false;                                       // "Done" was shown

    Driver();
    // Runs a job to its end.
    void run(int op, const std::string &source, const std::vector<std::string> &names,
             const std::string &dest, uint32_t flags = 0);
    void copy(const JobDir &dir, const std::vector<std::string> &names, uint32_t flags = 0);
    void move(const JobDir &dir, const std::vector<std::string> &names, uint32_t flags = 0);
    void remove(const JobDir &dir, const std::vector<std::string> &names, uint32_t flags = 0);
    std::string texts() const; // of all questions, one after another
};

// What most tests of jobs stand on: "src" and "dst", and a driver.
struct FopTest : testing::Test {
    JobDir dir;
    Driver driver;
    FopTest();
    std::string text(size_t i) const; // of question i
    std::string quoted(const std::string &name) const { return "'" + (dir / name) + "'"; }
};

// Runs body in a process that has file systems of its own: prepare may mount there. What body says;
// without an answer when this user can have none or prepare answered false.
std::optional<bool> own_mounts(const std::function<bool()> &prepare,
                               const std::function<bool()> &body);

// Extended attributes below a directory: those of its file system, or made up in the table of
// system calls where that has none. One at a time.
struct Attributes {
    explicit Attributes(const JobDir &dir);
    ~Attributes();
    void set(const std::string &path, const std::string &name, const std::string &value) const;
    std::string get(const std::string &path, const std::string &name) const; // "" when it has none
};

// Renames between directories fail as between file systems.
void sys_two_file_systems();

// Renames cannot be asked not to replace what is there, as on simple file systems.
void sys_replacing_renames();

// Fails the call number n (from 0) of those that the job makes, with error; counts all calls.
struct Faults {
    static void install();
    static void arm(long n, int error, bool for_ever = false);
    static long calls();
    static const char *failed(); // the name of the call that was made to fail, null when none was
};

int open_descriptors();

} // namespace tav

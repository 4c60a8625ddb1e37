// What every benchmark program shares: two sides measured in turns, the median of their pairwise
// ratios, and one line per row that script/bench gathers: "row NAME RATIO LIMIT OURS BASELINE".
// A row never fails anything; the table shows which are past their limit.
#pragma once

#include <functional>
#include <string>

namespace tav {

// One side of a comparison. Only run is timed; both prepare and finish may be empty.
struct BenchSide {
    std::function<void()> prepare; // before each run, e.g. to put things back
    std::function<void()> run;     // what is measured
    std::function<void()> finish;  // after each run
};

// What is compared and how often.
struct BenchRow {
    std::string name; // one word: "read_sort_100000"
    double limit;     // the ratio ours / baseline that is still fine
    int pairs = 7;    // measured pairs, after one that only warms up
};

// Reads the options: "--only TEXT" runs only rows whose name holds TEXT, "--pairs N" measures N
// pairs,
// "--large" adds what takes minutes. Exits with 2 and a usage text for anything else.
void bench_start(int argc, char **argv);

bool bench_wants(const std::string &name); // the row is not filtered out; ask before costly set-up
bool bench_large();                        // "--large" was given
int bench_runs(const BenchRow &row);       // of each side, the one that only warms up included

// Runs ours and baseline in turns and prints the row. The median ratio, or 0 when filtered out.
double bench_compare(const BenchRow &row, const BenchSide &ours, const BenchSide &baseline);

// The same for sides that measure themselves: each returns seconds (or bytes, or any one unit).
double bench_compare_values(const BenchRow &row, const std::function<double()> &ours,
                            const std::function<double()> &baseline);

// A row whose two figures are known already.
double bench_report(const BenchRow &row, double ours, double baseline);

// Seconds that f takes by the steady clock.
double bench_seconds(const std::function<void()> &f);

// Keeps the compiler from leaving out the work behind a value.
template <typename T>
inline void bench_keep(const T &value)
{
    asm volatile("" : : "g"(&value) : "memory");
}

// What a directory for measuring holds. Names, sizes and times differ and come in no order.
struct BenchFiles {
    int count;           // entries
    int directories = 5; // of a hundred
    int links = 2;       // of a hundred; they point at plain files beside them
};

// The place for measuring on disk ("TAV_BENCH_DIR", else /var/tmp) or on tmpfs (/dev/shm).
enum class BenchPlace { Disk, Memory };

// A directory of that content, made once per run of the program and removed at its end. Its path.
const std::string &bench_directory(const BenchFiles &files, BenchPlace place);

// An empty directory for the program's own use, removed with all it holds at the program's end.
const std::string &bench_scratch(BenchPlace place);

// Before a run that is to find nothing in memory: what is dirty is written, then all that the
// kernel keeps is dropped, where this user may do that; else only the contents of the files at and
// below path.
void bench_forget(const std::string &path);

// Uses that many bytes of free memory and gives them back. A virtual machine's host takes away what
// was free for some seconds; whoever needs it next waits for it, which can take longer than what is
// measured. To be called last before a run.
void bench_touch_memory(size_t bytes);

// How the name of a row ends that is measured so: "_cold", or "_cold_contents" where names and
// statuses stay in memory.
const char *bench_cold();

// The bare loop that reading is compared with: getdents64 and one fstatat per name. Bytes of all
// sizes, so that nothing is left out; -1 when the directory cannot be read.
long long bench_getdents_loop(const char *path);

} // namespace tav

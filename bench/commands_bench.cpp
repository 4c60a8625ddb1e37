// Launching and classifying: what stands between Enter and the program, and what a name costs in
// the table of associations.
#include "bench.h"
#include "commands/as.h"
#include "commands/misc.h"
#include "model/dir.h"
#include "platform/child.h"

#include <clocale>
#include <cstdlib>
#include <fnmatch.h>
#include <memory>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

using namespace tav;

namespace {

constexpr int LAUNCHES = 100;              // per measured run
constexpr int NAMES = 100'000;             // that are classified
constexpr size_t MEMORY = size_t{1} << 30; // that the program uses while it starts others

void x_wait_for_kept()
{
    siginfo_t info;
    while (child_reap() > 0)
        waitid(P_ALL, 0, &info, WEXITED | WNOWAIT);
    while (misc_tick() > 0) {
    }
}

// The same shell command without anything around it. Starting returns once the program is executed.
double x_spawn_bare()
{
    const char *argv[] = {"sh", "-c", "exec true \"a.c\"", nullptr};
    double seconds = 0;
    for (int i = 0; i < LAUNCHES; i++) {
        pid_t pid = -1;
        seconds += bench_seconds([&] {
            posix_spawn(&pid, "/bin/sh", nullptr, nullptr, const_cast<char **>(argv), environ);
        });
        waitpid(pid, nullptr, 0);
    }
    return seconds;
}

// From the association of a file to its program, as Enter does it.
double x_open()
{
    double seconds = 0;
    for (int i = 0; i < LAUNCHES; i++) {
        seconds += bench_seconds([] {
            if (const char *command = _get_pat_cmd("a.c", AS_OPEN))
                file_cmd(command, "a.c");
        });
        x_wait_for_kept();
    }
    return seconds;
}

void x_bench_launch()
{
    apat.clear();
    _add_pat("*.[ch]", "true", "", "");
    gDir.path = bench_scratch(BenchPlace::Disk);
    gDir.has_path = true;
    bench_compare_values({"enter_to_execve_100", 3.0}, x_open, x_spawn_bare);
}

// The same while the program uses a lot of memory, against itself without.
void x_bench_growth()
{
    std::unique_ptr<char[]> memory;
    const auto with_memory = [&] {
        memory.reset(new char[MEMORY]);
        for (size_t i = 0; i < MEMORY; i += 4096)
            memory[i] = 1;
        bench_keep(memory[MEMORY - 1]);
        const double seconds = x_open();
        memory.reset();
        return seconds;
    };
    // Short runs, so that a busy machine shows: more of them.
    bench_compare_values({"enter_to_execve_with_1GiB_against_none", 1.2, 15}, with_memory, x_open);
}

// Names as a home has them: some with a known ending, most without.
std::vector<std::string> x_names()
{
    const char *endings[] = {".c",   ".txt", ".jpg", ".html", ".o",  ".cpp", ".so.6", "",
                             ".tar", ".png", ".JPG", ".wav",  ".py", ".md",  ".core", "~"};
    std::vector<std::string> names;
    names.reserve(NAMES);
    for (int i = 0; i < NAMES; i++)
        names.push_back("some_file_" + std::to_string(i * 7919) + endings[i % 16]);
    return names;
}

void x_bench_classify()
{
    if (!bench_wants("classify_100000"))
        return;
    const std::vector<std::string> names = x_names();
    const char *patterns[] = {"*.[ch]", "[Mm]akefile", "*.txt", "*.core", "*.jpg",
                              "*.html", "*.rm",        "*.wav", "*.mpeg", "*.ttf"};
    as_set_defaults();
    bench_compare({"classify_100000", 1.5},
                  {{},
                   [&] {
                       int sum = 0;
                       for (const std::string &name : names)
                           sum += _get_pat_idx(name.c_str());
                       bench_keep(sum);
                   },
                   {}},
                  {{},
                   [&] {
                       int sum = 0;
                       for (const std::string &name : names)
                           for (const char *pattern : patterns)
                               sum += fnmatch(pattern, name.c_str(), 0);
                       bench_keep(sum);
                   },
                   {}});
}

} // namespace

int main(int argc, char **argv)
{
    setlocale(LC_CTYPE, "C.UTF-8");
    bench_start(argc, argv);
    x_bench_launch();
    x_bench_growth();
    x_bench_classify();
    return 0;
}

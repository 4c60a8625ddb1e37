// The start of the whole program, from its process on: until the list is read and painted, beside
// an empty main window of the toolkit of the same size and the bare loop over the directory; and
// the memory that an entry takes in a process with its window. What is started is the program's own
// main, ended by until_painted.cpp.
#include "bench/bench.h"
#include "model/dir.h"

#include <cstdio>
#include <cstdlib>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using namespace tav;

constexpr int sSmall = 100;
constexpr int sCounts[] = {1000, 10000, 100000};
constexpr int sLarge = 100000;
constexpr int sHuge = 1000000;

// Runs a program of the folder to its end; what it printed last. Exits when it did not end well.
std::string x_run(const std::string &command)
{
    FILE *pipe = ::popen(command.c_str(), "r");
    char line[128] = "";
    while (pipe != nullptr && std::fgets(line, sizeof line, pipe) != nullptr) {
    }
    if (pipe == nullptr || ::pclose(pipe) != 0) {
        std::fprintf(stderr, "did not end well: %s\n", command.c_str());
        std::exit(EXIT_FAILURE);
    }
    return line;
}

struct Programs {
    std::string tav;   // the command that starts tav on the directory behind it
    std::string empty; // the command that starts the empty window, which is as large as tav's

    explicit Programs(const std::string &self);
};

// What a started tav said at its end.
struct Started {
    long bytes = 0; // in memory when all entries are shown
    int listed = -1;
    int width = 0, height = 0; // of its window
};

// Starts tav on a directory of that many entries.
Started x_start(const Programs &programs, int count)
{
    const std::string line = x_run(programs.tav + bench_directory({count}, BenchPlace::Memory));
    Started said;
    if (std::sscanf(line.c_str(), "%ld %d %d %d", &said.bytes, &said.listed, &said.width,
                    &said.height) != 4 ||
        said.listed != count) {
        std::fprintf(stderr, "listed %d entries of %d\n", said.listed, count);
        std::exit(EXIT_FAILURE);
    }
    return said;
}

Programs::Programs(const std::string &self)
{
    const std::string folder = self.substr(0, self.rfind('/') + 1);
    tav = "exec '" + folder + "tav_until_painted' ";
    const Started said = x_start(*this, sSmall);
    empty = "exec '" + folder + "empty_window' " + std::to_string(said.width) + " " +
            std::to_string(said.height);
}

void x_compare_first_window(const Programs &programs)
{
    bench_directory({sSmall}, BenchPlace::Memory);
    bench_compare({"start_first_window", 1.5, 21}, {{}, [&] { x_start(programs, sSmall); }, {}},
                  {{}, [&] { x_run(programs.empty); }, {}});
}

void x_compare_list(const Programs &programs, int count)
{
    const BenchRow row = {"start_list_" + std::to_string(count), 1.6, 11};
    if (!bench_wants(row.name))
        return;
    const std::string path = bench_directory({count}, BenchPlace::Memory);
    bench_compare(row, {{}, [&] { x_start(programs, count); }, {}},
                  {{},
                   [&] {
                       x_run(programs.empty);
                       bench_getdents_loop(path.c_str());
                   },
                   {}});
}

void x_compare_growth(const Programs &programs)
{
    const BenchRow row = {"start_growth_10000_to_100000", 12, 5};
    if (!bench_wants(row.name))
        return;
    bench_compare(row, {{}, [&] { x_start(programs, sLarge); }, {}},
                  {{}, [&] { x_start(programs, sLarge / 10); }, {}});
}

void x_compare_memory(const Programs &programs, int count)
{
    const std::string name = "start_memory_per_entry_" + std::to_string(count);
    if (!bench_wants(name))
        return;
    const long grown = x_start(programs, count).bytes - x_start(programs, 0).bytes;
    bench_report({name, 1.3}, static_cast<double>(grown) / count, sizeof(DirEntry));
}

} // namespace

int main(int argc, char **argv)
{
    bench_start(argc, argv);
    const Programs programs(argv[0]);
    x_compare_first_window(programs);
    for (const int count : sCounts)
        x_compare_list(programs, count);
    x_compare_growth(programs);
    x_compare_memory(programs, sLarge);
    x_compare_memory(programs, sHuge);
    return 0;
}

// The start of the whole program, from its process on: until the list is read and painted, beside
// an empty main window of the toolkit (and the bare loop over the directory); and the memory that
// an entry takes in a process with its window. Called with "--child DIRECTORY" it is the program
// that is measured.
#include "app/base.h"
#include "app/init.h"
#include "app/options.h"
#include "bench/bench.h"
#include "model/dir.h"
#include "platform/ui_gate.h"
#include "views/fl.h"
#include "views/fl_view.h"

#include <QApplication>
#include <QEvent>
#include <QTimer>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using namespace tav;

constexpr int sSmall = 100;
constexpr int sMiddle = 1000;
constexpr int sLarge = 100000;
constexpr int sHuge = 1000000;

// Bytes of this process that are in memory.
long x_resident()
{
    long all = 0;
    long resident = 0;
    FILE *file = std::fopen("/proc/self/statm", "r");
    if (file == nullptr || std::fscanf(file, "%ld %ld", &all, &resident) != 2)
        std::exit(EXIT_FAILURE);
    std::fclose(file);
    return resident * sysconf(_SC_PAGESIZE);
}

// Ends the process when the complete list has been painted, after saying how much memory it takes.
class EndAfterPaint : public QObject {
protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Paint && !fl_is_reading() && !gDir.path.empty())
            QTimer::singleShot(0, [] {
                std::printf("%ld %d\n", x_resident(), gDir.count);
                std::fflush(stdout);
                _exit(EXIT_SUCCESS);
            });
        return false;
    }
};

// What main does, as far as the first window.
int x_child(const char *directory)
{
    char program[] = "tav";
    char *words[] = {program, nullptr};
    int count = 1;
    QApplication application(count, words);
    QApplication::setQuitOnLastWindowClosed(false);
    ui_gate_open();
    const char *line[] = {"tav", directory};
    init(2, line);
    EndAfterPaint end;
    base_create(Options());
    fl_view()->viewport()->installEventFilter(&end);
    fl_view()->viewport()->update();
    return QApplication::exec();
}

// Runs a program to its end; what it printed last. Exits when it did not end well.
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

std::string x_folder_of(const char *program)
{
    const std::string path = program;
    const size_t slash = path.rfind('/');
    return slash == path.npos ? "." : path.substr(0, slash);
}

std::string x_directory(int count) { return bench_directory({count}, BenchPlace::Memory); }

struct Programs {
    std::string child; // the command that starts tav on the directory behind it
    std::string empty; // the command that starts the empty window
};

void x_compare_start(const Programs &programs, int count, const char *name, double limit, bool loop)
{
    const BenchRow row = {name, limit, 9};
    if (!bench_wants(row.name))
        return;
    const std::string path = x_directory(count);
    bench_compare(row, {{}, [&] { x_run(programs.child + path); }, {}},
                  {{},
                   [&] {
                       x_run(programs.empty);
                       if (loop)
                           bench_getdents_loop(path.c_str());
                   },
                   {}});
}

// Bytes in memory with that many entries listed.
double x_memory(const Programs &programs, int count)
{
    return std::atof(x_run(programs.child + x_directory(count)).c_str());
}

void x_compare_memory(const Programs &programs, int count)
{
    const std::string name = "start_memory_per_entry_" + std::to_string(count);
    if (!bench_wants(name))
        return;
    const double grown = x_memory(programs, count) - x_memory(programs, 0);
    bench_report({name, 1.3}, grown / count, sizeof(DirEntry));
}

} // namespace

int main(int argc, char **argv)
{
    if (argc == 3 && std::strcmp(argv[1], "--child") == 0)
        return x_child(argv[2]);
    bench_start(argc, argv);
    const Programs programs = {"exec '" + std::string(argv[0]) + "' --child ",
                               "exec '" + x_folder_of(argv[0]) + "/empty_window'"};
    x_compare_start(programs, sSmall, "start_first_window", 1.5, false);
    x_compare_start(programs, sMiddle, "start_list_1000", 1.6, true);
    x_compare_start(programs, sLarge, "start_list_100000", 1.6, true);
    x_compare_memory(programs, sLarge);
    x_compare_memory(programs, sHuge);
    return 0;
}

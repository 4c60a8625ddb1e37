// What a running job costs the main thread, which shows its progress meanwhile.
#include "bench/bench.h"
#include "fileops/fop_sys.h"
#include "fileops/slot.h"
#include "platform/ui_gate.h"

#include <QApplication>
#include <algorithm>
#include <sys/stat.h>
#include <vector>

namespace tav {
namespace {

constexpr int SMALL_FILES = 20'000;
constexpr double SHARE = 0.03; // of one core, while the job runs
constexpr int TURNS = 5;       // the median of which counts

double x_main_thread_seconds()
{
    timespec time;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

// What a copy costs the main thread from its start to its end, with the window that shows it, and
// how long it takes. In seconds.
struct Cost {
    double main_thread = 0;
    double wall = 0;
};

Cost x_copy(const std::string &source, const std::string &dest)
{
    ::mkdir(dest.c_str(), 0755);
    const size_t slash = source.rfind('/');
    const std::string parent = source.substr(0, slash), item = source.substr(slash + 1);
    const char *names[] = {item.c_str()};
    double before = 0;
    Cost cost;
    cost.wall = bench_seconds([&] {
        if (fop_start_cmd(FOP_COPY, parent.c_str(), 1, names, dest.c_str()) != 0)
            return;
        QApplication::processEvents(); // the window opens once, however long the job takes
        before = x_main_thread_seconds();
        while (slot_count() > 0)
            QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    });
    cost.main_thread = x_main_thread_seconds() - before;
    return cost;
}

void x_share(BenchPlace place, const std::string &name, bool cold)
{
    if (!bench_wants(name))
        return;
    const std::string source = bench_directory({SMALL_FILES, 5, 0}, place);
    std::vector<Cost> costs;
    for (int i = 0; i < TURNS; i++) {
        if (cold)
            bench_forget(source);
        costs.push_back(x_copy(source, bench_scratch(place) + "/" + name + std::to_string(i)));
    }
    std::sort(costs.begin(), costs.end(), [](const Cost &a, const Cost &b) {
        return a.main_thread * b.wall < b.main_thread * a.wall;
    });
    const Cost &median = costs[TURNS / 2];
    bench_report({name, 1}, median.main_thread, SHARE * median.wall);
}

} // namespace
} // namespace tav

int main(int argc, char **argv)
{
    using namespace tav;
    QApplication application(argc, argv);
    bench_start(argc, argv);
    ui_gate_open();
    gFopSys.delay = [](unsigned) {}; // "Done" is not shown: nothing runs then
    gSlotHooks = {[] {}, [] {}};
    const std::string disk = "main_thread_share_disk";
    x_share(BenchPlace::Memory, "main_thread_share_tmpfs", false);
    x_share(BenchPlace::Disk, disk, false);
    x_share(BenchPlace::Disk, disk + bench_cold(), true);
    return 0;
}

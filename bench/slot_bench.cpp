// What a running job costs the main thread, which shows its progress meanwhile.
#include "bench/bench.h"
#include "fileops/fop_sys.h"
#include "fileops/slot.h"
#include "platform/ui_gate.h"

#include <QApplication>
#include <sys/stat.h>

namespace tav {
namespace {

constexpr int SMALL_FILES = 20'000;
constexpr double SHARE = 0.03; // of one core, while the job runs

double x_main_thread_seconds()
{
    timespec time;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

// From the start of a copy to its end, with the window that shows it.
void x_share(BenchPlace place, const char *name)
{
    if (!bench_wants(name))
        return;
    const std::string source = bench_directory({SMALL_FILES, 5, 0}, place);
    const std::string dest = bench_scratch(place) + "/copy";
    ::mkdir(dest.c_str(), 0755);
    const size_t slash = source.rfind('/');
    const std::string parent = source.substr(0, slash), item = source.substr(slash + 1);
    const char *names[] = {item.c_str()};
    double before = 0;
    const double wall = bench_seconds([&] {
        if (fop_start_cmd(FOP_COPY, parent.c_str(), 1, names, dest.c_str()) != 0)
            return;
        QApplication::processEvents(); // the window opens once, however long the job takes
        before = x_main_thread_seconds();
        while (slot_count() > 0)
            QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    });
    bench_report({name, 1}, x_main_thread_seconds() - before, SHARE * wall);
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
    x_share(BenchPlace::Memory, "main_thread_share_tmpfs");
    x_share(BenchPlace::Disk, "main_thread_share_disk");
    return 0;
}

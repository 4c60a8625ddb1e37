// Destination menus: what it takes from opening a directory's item to the full list with every
// arrow, beside the bare loops over the same directories; and how long the window stands still
// meanwhile.
#include "bench.h"
#include "commands/dtm.h"
#include "platform/ui_gate.h"
#include "platform/w.h"

#include <QApplication>
#include <QScreen>
#include <algorithm>
#include <cstdio>
#include <dirent.h>
#include <sys/stat.h>

using namespace tav;

namespace {

constexpr int SUBDIRECTORIES = 1000;
constexpr int MANY = 20'000;
constexpr double PATIENCE = 0.1; // seconds for which a window may stand still

// A directory with so many subdirectories, each second one with a subdirectory of its own.
std::string x_make(int count)
{
    std::string path = bench_scratch(BenchPlace::Disk) + "/" + std::to_string(count);
    mkdir(path.c_str(), 0755);
    for (int i = 0; i < count; i++) {
        const std::string sub = path + "/" + std::to_string(i * 7919);
        mkdir(sub.c_str(), 0755);
        if (i % 2)
            mkdir((sub + "/below").c_str(), 0755);
    }
    return path;
}

// The list is there and it is known of each directory whether it gets an arrow, of those on the
// screen also shown.
bool x_is_complete(const DirMenuItem &item, size_t count)
{
    return item.scan && item.scan->finished && item.scan->names.size() == count && item.submenu &&
           item.submenu->isVisible() && !item.items.isEmpty() &&
           std::none_of(item.items.begin(), item.items.end(),
                        [](const DirMenuItem *one) { return one->state() == DtmState::unknown; });
}

// Opens the item until all is there; the longest turn of the main loop.
double x_open(const std::string &path, size_t count)
{
    QMenu menu;
    DirMenuItem *item = dtm_add_item(&menu, path, path, 0, [](const char *) { return 0; });
    double longest = bench_seconds([&] {
        menu.popup(QPoint(0, 0));
        menu.setActiveAction(item);
    });
    while (!x_is_complete(*item, count))
        longest = std::max(longest, bench_seconds([] {
                               QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
                           }));
    const double closing = bench_seconds([&] {
        menu.close();
        delete item->submenu;
    });
    return std::max(longest, closing);
}

// Whether there is a subdirectory, found out with one call per entry.
bool x_has_subdirectory(const std::string &path)
{
    DIR *dir = opendir(path.c_str());
    bool any = false;
    while (const dirent *entry = dir && !any ? readdir(dir) : nullptr) {
        struct stat status;
        any = entry->d_name[0] != '.' && stat((path + "/" + entry->d_name).c_str(), &status) == 0 &&
              S_ISDIR(status.st_mode);
    }
    if (dir)
        closedir(dir);
    return any;
}

int x_bare(const std::string &path)
{
    std::vector<std::string> found;
    DIR *dir = opendir(path.c_str());
    while (const dirent *entry = dir ? readdir(dir) : nullptr) {
        const std::string sub = path + "/" + entry->d_name;
        struct stat status;
        if (entry->d_name[0] != '.' && stat(sub.c_str(), &status) == 0 && S_ISDIR(status.st_mode))
            found.push_back(sub);
    }
    if (dir)
        closedir(dir);
    return static_cast<int>(std::count_if(found.begin(), found.end(), x_has_subdirectory));
}

void x_bench_open()
{
    if (!bench_wants("menu_open_1000"))
        return;
    const std::string path = x_make(SUBDIRECTORIES);
    bench_compare({"menu_open_1000", 2.0}, {{}, [&] { x_open(path, SUBDIRECTORIES); }, {}},
                  {{}, [&] { bench_keep(x_bare(path)); }, {}});
}

void x_bench_still()
{
    if (!bench_wants("menu_longest_turn_20000"))
        return;
    const std::string path = x_make(MANY);
    x_open(path, MANY); // into the cache
    bench_report({"menu_longest_turn_20000", 1.0}, x_open(path, MANY), PATIENCE);
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    bench_start(argc, argv);
    ui_gate_open();
    x_bench_open();
    x_bench_still();
    return 0;
}

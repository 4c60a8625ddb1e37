// The hotlist and its tree: starting with a long hotlist, expanding a large level, adding to a long
// list.
#include "app/config.h"
#include "bench/bench.h"
#include "model/fs.h"
#include "platform/ui_gate.h"
#include "platform/w.h"
#include "views/tree.h"
#include "views/tree_jobs.h"

#include <QApplication>
#include <QMainWindow>
#include <QProcess>
#include <dirent.h>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>

namespace tav {

namespace {

constexpr int LEVEL = 10000;      // directories in the large level
constexpr int HOTLIST = 1000;     // directories of the long hotlist
constexpr int ADDED = 10000;      // entries of the long list
constexpr unsigned POLL_US = 200; // between looks at a program that starts
constexpr int ADDED_EACH = 500;   // entries added per measurement

std::string many_directories(const std::string &name, int count)
{
    std::string path = bench_scratch(BenchPlace::Memory) + "/" + name;
    for (int i = 0; i < count; ++i)
        std::filesystem::create_directories(path + "/d" + std::to_string(i));
    return path;
}

// What expanding is compared with: the names, one stat each, and the test for subdirectories.
long bare_level(const std::string &path)
{
    long found = 0;
    DIR *dir = opendir(path.c_str());
    while (const dirent *entry = dir ? readdir(dir) : nullptr) {
        struct stat status;
        if (entry->d_name[0] == '.' || fstatat(dirfd(dir), entry->d_name, &status, 0) != 0)
            continue;
        if (S_ISDIR(status.st_mode))
            found += fs_path_has_subdirectories(path.c_str(), entry->d_name, 0);
    }
    if (dir)
        closedir(dir);
    return found;
}

void bench_level()
{
    if (!bench_wants("tree_expand_10000"))
        return;
    const std::string path = many_directories("level", LEVEL);
    QMainWindow window;
    gBase = &window;
    auto *tree = new TreeView;
    tree->setObjectName(QStringLiteral("tree"));
    window.setCentralWidget(tree);
    tree_setup();
    tree_set_paths({path});
    tree_build(tree);
    window.show();
    auto *row = static_cast<TreeItem *>(tree->topLevelItem(0));
    row->setChildIndicatorPolicy(QTreeWidgetItem::ShowIndicator);
    const BenchSide ours = {[row] { row->setExpanded(false); },
                            [row] {
                                row->setExpanded(true);
                                while (row->level)
                                    QApplication::processEvents(QEventLoop::WaitForMoreEvents);
                            },
                            [row] {
                                if (row->childCount() != LEVEL)
                                    qFatal("not all rows came");
                            }};
    bench_compare({"tree_expand_10000", 2.0}, ours,
                  {nullptr, [&path] { bench_keep(bare_level(path)); }, nullptr});
    gBase = nullptr;
}

// Adds entries to a list that holds so many already; seconds.
double add_to(int held)
{
    std::vector<std::string> paths;
    paths.reserve(static_cast<size_t>(held));
    for (int i = 0; i < held; ++i)
        paths.push_back("/held/" + std::to_string(i));
    tree_set_paths(paths);
    return bench_seconds([] {
        for (int i = 0; i < ADDED_EACH; ++i)
            tree_add(nullptr, ("/added/" + std::to_string(i)).c_str());
    });
}

// Seconds until tav, started with a hotlist of so many directories, has its window and enters its
// directory (the program's working directory follows what the list shows).
double start_with(int count, const std::string &directories)
{
    const std::string home = bench_scratch(BenchPlace::Memory) + "/home";
    std::filesystem::create_directories(home + "/.ph/tav");
    std::ofstream file(home + "/.ph/tav/hotlist.001");
    for (int i = 0; i < count; ++i)
        file << directories << "/d" << i << '\n';
    file.close();
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("HOME"), QString::fromStdString(home));
    QProcess tav;
    tav.setProcessEnvironment(environment);
    const double seconds = bench_seconds([&] {
        tav.start(QCoreApplication::applicationDirPath() + QStringLiteral("/../tav"),
                  {QString::fromStdString(home)});
        const std::string cwd = "/proc/" + std::to_string(tav.processId()) + "/cwd";
        std::error_code error;
        while (std::filesystem::read_symlink(cwd, error) != home && !error)
            usleep(POLL_US);
    });
    tav.kill();
    tav.waitForFinished();
    return seconds;
}

void bench_start_hotlist()
{
    if (!bench_wants("start_hotlist_1000"))
        return;
    const std::string path = many_directories("hotlist", HOTLIST);
    bench_compare_values(
        {"start_hotlist_1000", 1.1, 15}, [&path] { return start_with(HOTLIST, path); },
        [&path] { return start_with(1, path); });
}

} // namespace

} // namespace tav

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    tav::bench_start(argc, argv);
    int none = 1;
    QApplication application(none, argv);
    tav::ui_gate_open();
    tav::bench_level();
    tav::bench_start_hotlist();
    tav::bench_compare_values(
        {"hotlist_add_10000th", 1.0, 51}, [] { return tav::add_to(tav::ADDED); },
        [] { return tav::add_to(0); });
    tav::ui_gate_close();
}

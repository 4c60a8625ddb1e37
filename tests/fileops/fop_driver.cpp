// The headless driver of jobs: see fop_driver.h.
#include "fop_driver.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <unistd.h>

namespace tav {
namespace fs = std::filesystem;

JobDir::JobDir(const char *below)
{
    const char *base = below ? below : std::getenv("TMPDIR");
    std::string name = std::string(base ? base : "/tmp") + "/tav-test-XXXXXX";
    if (!::mkdtemp(name.data()))
        std::abort();
    path = name;
}

JobDir::~JobDir()
{
    std::string command = "chmod -R u+rwx '" + path + "' 2>/dev/null; rm -rf '" + path + "'";
    [[maybe_unused]] int status = std::system(command.c_str());
}

void JobDir::dir(const std::string &name, mode_t mode) const
{
    fs::create_directories(path + "/" + name);
    ::chmod((path + "/" + name).c_str(), mode);
}

void JobDir::file(const std::string &name, const std::string &content, mode_t mode) const
{
    std::ofstream(path + "/" + name, std::ios::binary) << content;
    ::chmod((path + "/" + name).c_str(), mode);
}

void JobDir::link(const std::string &name, const std::string &target) const
{
    ASSERT_EQ(::symlink(target.c_str(), (path + "/" + name).c_str()), 0);
}

void JobDir::fifo(const std::string &name, mode_t mode) const
{
    ASSERT_EQ(::mkfifo((path + "/" + name).c_str(), mode), 0);
}

bool JobDir::exists(const std::string &name) const
{
    struct stat status;
    return ::lstat((path + "/" + name).c_str(), &status) == 0;
}

std::string JobDir::read(const std::string &name) const
{
    std::ifstream in(path + "/" + name, std::ios::binary);
    std::stringstream all;
    all << in.rdbuf();
    return in ? all.str() : "(none)";
}

struct stat JobDir::status(const std::string &name) const
{
    struct stat status {};
    EXPECT_EQ(::lstat((path + "/" + name).c_str(), &status), 0) << name;
    return status;
}

std::map<std::string, std::string> JobDir::all(const std::string &name) const
{
    std::map<std::string, std::string> found;
    std::string top = name.empty() ? path : path + "/" + name;
    if (!fs::exists(fs::symlink_status(top)))
        return found;
    for (const auto &entry : fs::recursive_directory_iterator(top)) {
        std::string below = entry.path().string().substr(top.size() + 1);
        if (entry.is_symlink())
            found[below] = "link " + fs::read_symlink(entry.path()).string();
        else if (entry.is_directory())
            found[below] = "directory";
        else if (entry.is_fifo())
            found[below] = "fifo";
        else if (entry.is_regular_file())
            found[below] = "file " + read(entry.path().string().substr(path.size() + 1));
        else
            found[below] = "other";
    }
    return found;
}

SysGuard::SysGuard()
{
    gFopSys = gFopSysReal;
    gFopSys.delay = [](unsigned) { ::sched_yield(); };
    // The machine's other writing is nothing to wait for.
    gFopSys.syncfs = [](int fd) { return ::fcntl(fd, F_GETFD) == -1 ? -1 : 0; };
    gFopSys.sync = [] {};
}

SysGuard::~SysGuard() { gFopSys = gFopSysReal; }

namespace {

Driver &x_driver(FileOp *job) { return *static_cast<Driver *>(job->context); }

int x_alert(FileOp *job, const FopAlert &alert)
{
    Driver &driver = x_driver(job);
    driver.alerts.push_back(alert);
    if (driver.on_alert)
        return driver.on_alert(alert);
    if (driver.answers.empty())
        return alert.on_close;
    int answer = driver.answers.front();
    driver.answers.pop_front();
    return answer;
}

void x_notice(FileOp *job, const char *title, const char *text)
{
    x_driver(job).notices.push_back(std::string(title) + ": " + text);
}

void x_update(FileOp *job, const FopUpdate &update)
{
    Driver &driver = x_driver(job);
    if (update.title && (driver.titles.empty() || driver.titles.back() != update.title))
        driver.titles.emplace_back(update.title);
    if (update.from_label && std::strcmp(update.from_label, "Done") == 0)
        driver.finished_done = true;
    if (driver.on_update)
        driver.on_update(update);
}

bool x_long_name(FileOp *job, const char *source, const char *dest, FopPlace &place)
{
    Driver &driver = x_driver(job);
    return driver.on_long_name && driver.on_long_name(source, dest, place);
}

void x_removed(FileOp *job)
{
    Driver &driver = x_driver(job);
    driver.removed++;
    driver.last_from = job->progress.from;
    driver.last_flags = job->flags;
    driver.n_done = job->n_done;
    driver.n_items = job->n_items;
    driver.total_bytes = job->total_bytes;
    driver.done_bytes = job->done_bytes;
}

void x_done(FileOp *job, const char *dir, const char *name)
{
    x_driver(job).done.push_back(std::string(dir) + "/" + name);
}

} // namespace

Driver::Driver() : report{x_alert, x_notice, x_update, x_long_name, x_removed} {}

void Driver::run(int op, const std::string &source, const std::vector<std::string> &names,
                 const std::string &dest, uint32_t flags)
{
    std::vector<const char *> list;
    for (const std::string &name : names)
        list.push_back(name.c_str());
    FopRequest request;
    request.op = op;
    request.source_dir = source.c_str();
    request.count = static_cast<int>(list.size());
    request.names = list.data();
    request.dest = dest.c_str();
    request.flags = flags;
    request.on_done = x_done;
    request.report = &report;
    request.context = this;
    FileOp *job = fop_create(request);
    ASSERT_TRUE(job);
    if (on_created)
        on_created(*job);
    fop_thread(job);
}

void Driver::copy(const JobDir &dir, const std::vector<std::string> &names, uint32_t flags)
{
    run(FOP_COPY, dir / "src", names, dir / "dst", flags);
}

void Driver::move(const JobDir &dir, const std::vector<std::string> &names, uint32_t flags)
{
    run(FOP_MOVE, dir / "src", names, dir / "dst", flags);
}

void Driver::remove(const JobDir &dir, const std::vector<std::string> &names, uint32_t flags)
{
    run(FOP_DELETE, dir / "src", names, "", flags);
}

std::string Driver::texts() const
{
    std::string all;
    for (const FopAlert &alert : alerts)
        all += alert.text;
    return all;
}

FopTest::FopTest()
{
    ::umask(022);
    dir.dir("src");
    dir.dir("dst");
}

std::string FopTest::text(size_t i) const
{
    return i < driver.alerts.size() ? driver.alerts[i].text : "(none)";
}

void sys_two_file_systems()
{
    gFopSys.renameat = [](int from_dir, const char *from, int to_dir, const char *to,
                          unsigned flags) {
        if (from_dir == to_dir)
            return gFopSysReal.renameat(from_dir, from, to_dir, to, flags);
        errno = EXDEV;
        return -1;
    };
}

void sys_replacing_renames()
{
    gFopSys.renameat = [](int from_dir, const char *from, int to_dir, const char *to,
                          unsigned flags) {
        if (flags == 0)
            return gFopSysReal.renameat(from_dir, from, to_dir, to, 0);
        errno = EINVAL;
        return -1;
    };
}

int open_descriptors()
{
    int count = 0;
    DIR *dir = ::opendir("/proc/self/fd");
    while (::readdir(dir))
        count++;
    ::closedir(dir);
    return count;
}

} // namespace tav

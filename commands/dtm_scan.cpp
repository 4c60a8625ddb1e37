// Looking through directories for destination menus.
#include "commands/dtm_scan.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <iterator>
#include <new>
#include <sys/stat.h>
#include <unistd.h>

namespace tav {

DIR *(*gDtmOpendir)(const char *path) = opendir;

namespace {

struct CloseDir {
    void operator()(DIR *dir) const { closedir(dir); }
};
using Dir = std::unique_ptr<DIR, CloseDir>;

// A directory that tells its names, but in which none can be reached, has nothing to offer.
Dir x_open(const char *path)
{
    Dir dir(gDtmOpendir(path));
    if (dir && faccessat(dirfd(dir.get()), ".", X_OK, AT_EACCESS) != 0)
        dir.reset();
    return dir;
}

bool x_is_skipped(const char *name, unsigned flags)
{
    if (name[0] != '.')
        return false;
    return flags & DTM_HIDE_DOT || strcmp(name, ".") == 0 || strcmp(name, "..") == 0;
}

// Only links and file systems that do not tell cost a status call.
bool x_is_directory(DIR *dir, const dirent &entry)
{
    if (entry.d_type != DT_UNKNOWN && entry.d_type != DT_LNK)
        return entry.d_type == DT_DIR;
    struct stat status;
    return fstatat(dirfd(dir), entry.d_name, &status, 0) == 0 && S_ISDIR(status.st_mode);
}

// The next subdirectory, null at the end or when cancel is set.
const dirent *x_next(DIR *dir, unsigned flags, const std::atomic<bool> *cancel)
{
    while (!cancel || !*cancel) {
        const dirent *entry = readdir(dir);
        if (!entry || (!x_is_skipped(entry->d_name, flags) && x_is_directory(dir, *entry)))
            return entry;
    }
    return nullptr;
}

bool x_is_number(const std::string &name)
{
    return std::all_of(name.begin(), name.end(), [](char c) { return c >= '0' && c <= '9'; });
}

// By value, however long; equal values by bytes.
bool x_number_less(const std::string &a, const std::string &b)
{
    const size_t from_a = std::min(a.find_first_not_of('0'), a.size());
    const size_t from_b = std::min(b.find_first_not_of('0'), b.size());
    if (a.size() - from_a != b.size() - from_b)
        return a.size() - from_a < b.size() - from_b;
    const int order = a.compare(from_a, a.npos, b, from_b, b.npos);
    return order != 0 ? order < 0 : a < b;
}

DtmState x_state(const std::string &path, unsigned flags)
{
    return dtm_is_subdirs(path.c_str(), flags) ? DtmState::cascade : DtmState::plain;
}

// Finds out what each name is; without room for their paths the rest stays unknown.
void x_examine(const std::shared_ptr<DtmScan> &scan, const DtmScanReport &report)
{
    auto last = std::chrono::steady_clock::now();
    try {
        for (size_t i = 0; i < scan->names.size() && !scan->cancel; i++) {
            scan->states[i] = x_state(dtm_join(scan->path, scan->names[i]), scan->flags);
            const auto now = std::chrono::steady_clock::now();
            if (now - last < std::chrono::milliseconds(DTM_REPORT_MS))
                continue;
            last = now;
            report.examined(scan);
        }
    } catch (const std::bad_alloc &) {
        // what was not looked at stays grey
    }
    report.examined(scan);
}

// Lists the directory and makes room for what will be known of each name.
void x_list(DtmScan &scan)
{
    try {
        scan.failed = dtm_dir_scan(scan.path.c_str(), scan.flags, scan.cancel, scan.names) != 0;
        scan.states = std::make_unique<std::atomic<DtmState>[]>(scan.names.size());
    } catch (const std::bad_alloc &) {
        scan.failed = scan.no_memory = true;
        scan.names.clear();
    }
}

} // namespace

std::string dtm_join(const std::string &path, const std::string &name)
{
    return !path.empty() && path.back() == '/' ? path + name : path + '/' + name;
}

void dtm_sort(std::vector<std::string> &names)
{
    const auto middle = std::partition(names.begin(), names.end(), x_is_number);
    std::sort(names.begin(), middle, x_number_less);
    std::sort(middle, names.end());
    // Not a std::merge: by bytes the numbers are in no order, the two are only interleaved.
    std::vector<std::string> out;
    out.reserve(names.size());
    auto number = names.begin(), other = middle;
    while (number != middle && other != names.end())
        out.push_back(std::move(*other < *number ? *other++ : *number++));
    std::move(number, middle, std::back_inserter(out));
    std::move(other, names.end(), std::back_inserter(out));
    names = std::move(out);
}

bool dtm_is_subdirs(const char *path, unsigned flags)
{
    const Dir dir = x_open(path);
    return dir && x_next(dir.get(), flags, nullptr) != nullptr;
}

int dtm_dir_scan(const char *path, unsigned flags, const std::atomic<bool> &cancel,
                 std::vector<std::string> &names)
{
    names.clear();
    const Dir dir = x_open(path);
    if (!dir)
        return -1;
    while (const dirent *entry = x_next(dir.get(), flags, &cancel))
        names.emplace_back(entry->d_name);
    if (cancel) {
        names.clear();
        return -1;
    }
    dtm_sort(names);
    return 0;
}

void dtm_scan_run(const std::shared_ptr<DtmScan> &scan, const DtmScanReport &report)
{
    scan->started = true;
    x_list(*scan);
    if (!scan->cancel) {
        report.listed(scan);
        x_examine(scan, report);
    }
    scan->finished = true;
}

} // namespace tav

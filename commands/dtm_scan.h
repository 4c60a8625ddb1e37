// Looking through directories for destination menus. Knows no Qt. What a scan fills is shared by
// the worker that fills it and the item that waits for it; whoever lets go last frees it, so that
// neither an item that is destroyed nor a directory that hangs ever makes the other one wait.
#pragma once

#include <atomic>
#include <cstdint>
#include <dirent.h>
#include <memory>
#include <string>
#include <vector>

namespace tav {

constexpr unsigned DTM_HIDE_DOT = 0x1; // skip names beginning with "."
constexpr unsigned DTM_EXAMINE =
    0x1000; // at creation: find out at once whether there is a subdirectory

// What is known of one item.
enum class DtmState : uint8_t {
    unknown, // still being examined
    cascade, // has a subdirectory
    plain,   // has none
};

// One directory being scanned.
struct DtmScan {
    std::string path;                  // the directory
    unsigned flags = 0;                // DTM_HIDE_DOT or 0
    std::atomic<bool> cancel{false};   // the main thread asks the worker to stop
    std::atomic<bool> started{false};  // the worker has begun
    std::atomic<bool> finished{false}; // the worker touches nothing any more
    bool failed = false;    // the directory could not be read; set before names are handed over
    bool no_memory = false; // there was no room for the names; likewise
    std::vector<std::string> names; // its subdirectories, sorted; fixed before they are handed over
    std::unique_ptr<std::atomic<DtmState>[]>
        states; // one per name, made with them; the worker fills it
};

// What opens a directory; tests put one in its place that hangs or refuses.
extern DIR *(*gDtmOpendir)(const char *path);

// What the worker tells; both are called on it. May be null.
struct DtmScanReport {
    void (*listed)(const std::shared_ptr<DtmScan> &scan); // names are there
    void (*examined)(
        const std::shared_ptr<DtmScan> &scan); // more states are there; not for each of them
};

constexpr int DTM_REPORT_MS = 20; // examined is called no more often than that, and at the end

// Lists the subdirectories, then finds out which of them have some themselves. Returns after the
// last report, with finished set; early when cancel was set.
void dtm_scan_run(const std::shared_ptr<DtmScan> &scan, const DtmScanReport &report);

// The names of the directory's subdirectories (links to directories count), sorted. 0, or -1 with
// names empty when it cannot be read or cancel was set.
int dtm_dir_scan(const char *path, unsigned flags, const std::atomic<bool> &cancel,
                 std::vector<std::string> &names);

// Whether the directory has a subdirectory; false when it cannot be read.
bool dtm_is_subdirs(const char *path, unsigned flags);

// Sorts names: all-digit ones (the empty one too) by value, the others by bytes, both merged by
// bytes.
void dtm_sort(std::vector<std::string> &names);

// The path of a directory's subdirectory.
std::string dtm_join(const std::string &path, const std::string &name);

} // namespace tav

// File-operation jobs: copy, move and delete. A job is one record and one detached worker thread:
//
//   fop_start_cmd (main thread) -> slot, flags, fop -> worker: scan -> checks -> work -> "Done" ->
//   freed
//
// The main thread starts a job, reads its progress and writes `abort` and `pause`; everything else
// belongs to the worker. The worker knows no widgets: it reports through a FopReport. After
// mark_removed the record is gone.
#pragma once

#include "fileops/alloc.h"

#include <atomic>
#include <cstdint>
#include <ctime>
#include <memory>
#include <mutex>
#include <pthread.h>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace tav {

// What a job does.
constexpr int FOP_COPY = 0;
constexpr int FOP_MOVE = 1;
constexpr int FOP_DELETE = 2;

// Bits of FileOp::flags.
constexpr uint32_t FOP_MAKE_DEST = 0x0001; // dest does not exist: create it before the first item
constexpr uint32_t FOP_BUF_MASK =
    0x00F0; // size of the copy buffer in units of 4096 bytes, 0: 32768
constexpr uint32_t FOP_DELETE_ALL = 0x0200; // delete without asking about unwriteable files
constexpr uint32_t FOP_DELETE_ASK = 0x0400; // ask before deleting every file
constexpr uint32_t FOP_OVERWRITE = 0x1000;  // overwrite existing files without asking
constexpr uint32_t FOP_FOLLOW = 0x2000;     // copy what links point to
constexpr uint32_t FOP_LINKS = 0x4000;      // copy links as links
constexpr uint32_t FOP_NO_OWNER = 0x8000;   // an owner that cannot be set is no longer reported
constexpr uint32_t FOP_ALL_BUT_DEST = 0xFFFFFFFE; // what the first rename or skip of a move sets

constexpr int FOP_BUF_SIZE = 32768;    // bytes of the copy buffer unless the flags say otherwise
constexpr unsigned FOP_PAUSE_MS = 50;  // how often a paused job looks again
constexpr unsigned FOP_DONE_MS = 1000; // how long "Done" is shown

// Values of FopUpdate::percent and ::seconds.
constexpr int FOP_PERCENT_RESET = -100; // the bar back to 0
constexpr int FOP_PERCENT_KEEP = -1;    // the bar as it is
constexpr int64_t FOP_TIME_BLANK = 0;   // no time is shown; the slot shows this at once
constexpr int64_t FOP_TIME_FIRST = -1;  // not known yet: no time is shown
constexpr int64_t FOP_TIME_KEEP = -2;   // the text as it is

// What a name in the file list is.
enum FopKind : uint8_t {
    FOP_UNKNOWN, // not looked at yet
    FOP_FILE,    // regular file
    FOP_DIR,     // directory
    FOP_LINK,    // symbolic link, taken as a link
    FOP_FIFO,
    FOP_OTHER, // device or socket: left out
};

// The eight widgets of a job's slot; the engine only keeps them.
struct SlotWidgets {
    void *slot_progress_bar;
    void *slot_header_text;
    void *slot_time_text;
    void *slot_from_text;
    void *slot_to_text;
    void *slot_n_text;
    void *cancel_button;
    void *slot; // the pane; mark_removed gets it
};

// A directory or file as the kernel knows it, whatever it is called.
struct FopId {
    dev_t dev = 0;
    ino_t ino = 0;
    bool operator==(const FopId &) const = default;
};

// One directory's part of the file list. Group 0 is the source directory with the selected names,
// every other group a directory met while scanning, in the order found. Lives in the job's pool.
struct DirGroup {
    const char *dir; // group 0: the source directory; else the name within the parent's directory
    int parent;   // the group that holds this directory, -1 for group 0; its path is fop_group_dir
    int count;    // names
    char **names; // single names; an empty one is dead: later passes skip it
    uint8_t *kinds;   // FopKind of each name, as the scan met it
    uint64_t *stamps; // moves: what each copied file was like (fop_stamp), 0 when not copied
    FopId id;         // of the directory itself; a descriptor for it is checked against this
    FopId dest_id;    // of the directory it is copied to, zero while that does not exist
    bool linked;      // reached through a link, or below such a directory: never deleted
    mode_t mode;      // its final mode, and
    bool filling;     // its destination is open for filling and waits for its final mode
};

struct FileOp;

// A question. labels: shortcut letters behind "&", marks already removed; numbers count from 1.
struct FopAlert {
    std::string title;
    std::string text;
    std::vector<std::string> labels;
    int on_return; // the default button
    int on_close;  // the answer when it is closed without a choice
};

// New contents for a slot; a null text leaves what is there.
struct FopUpdate {
    const char *title = nullptr;      // of the slot: "Copying"
    const char *from_label = nullptr; // stands before from_name; null: nothing does
    const char *from_name = nullptr;
    const char *to_label = nullptr; // the same for the second line
    const char *to_name = nullptr;
    int percent = FOP_PERCENT_KEEP;   // 0 to 100, or one of the above
    int64_t seconds = FOP_TIME_FIRST; // left, or one of the above
};

// A place for a copied file that the user named himself: relative to a directory that the answer
// opened.
struct FopPlace {
    int dir_fd = -1;  // the engine closes it
    std::string name; // at most 47 bytes
};

// How a worker speaks to the outside; every function is called on the worker and may wait.
struct FopReport {
    int (*alert)(FileOp *job, const FopAlert &alert);                 // the answer, from 1
    void (*notice)(FileOp *job, const char *title, const char *text); // one "&Close" button
    void (*update)(FileOp *job, const FopUpdate &update); // beside job->progress; may be null
    bool (*long_name)(FileOp *job, const char *source, const char *dest, FopPlace &place);
    void (*mark_removed)(FileOp *job); // the job's last act; may be null
};

// Called for every source item that was copied, moved or deleted. On the worker.
using FopDone = void (*)(FileOp *job, const char *directory, const char *name);

// The latest contents of a slot. The worker writes, the main thread reads when it is due.
struct FopProgress {
    std::mutex lock; // over everything below but the two counters
    std::string title;
    std::string from; // label and name, not shortened
    std::string to;
    int percent = 0;      // 0 to 100
    int64_t seconds = 0;  // time left; 0 and below show a blank
    unsigned changes = 0; // grows with every change
    bool at_once = false; // to be shown without waiting for the next turn; the reader clears it
    std::atomic<int64_t> n_done{0};
    std::atomic<int64_t> n_items{0};
    std::atomic<bool> asking{false}; // a question of this job waits for its answer
};

struct FopDirs; // the worker's open directories (fop_dirs.h)

// One job. The worker's, but for `abort`, `pause` and `progress`.
struct FileOp {
    pthread_t thread{};        // the worker, once it runs
    std::atomic<int> abort{0}; // non-zero: stop as soon as possible
    std::atomic<int> pause{0}; // non-zero: stand still
    int op = FOP_COPY;         // FOP_COPY, FOP_MOVE or FOP_DELETE
    uint32_t flags = 0;        // FOP_MAKE_DEST and so on; answers add to them
    std::string dest;          // destination directory, or the single item's new name
    int buf_size = 0;          // bytes
    char *buf = nullptr;       // the copy buffer
    size_t src_len = 0; // bytes of a source path that are cut off to form the path below dest
    int n_groups = 0;   // in use
    DirGroup **groups = nullptr;       // the file list; the scan adds a group for each directory
    size_t room_groups = 1;            // slots in groups
    int64_t n_items = 0;               // names given, and one for every entry found while scanning
    int64_t total_bytes = 0;           // sizes of all items
    int64_t n_done = 0;                // items processed
    int64_t done_bytes = 0;            // bytes accounted
    timespec start_time{};             // of the first estimate of the time left; zero before
    SlotWidgets slot{};                // where its progress is shown
    AllocPool *pool = nullptr;         // names, groups, buffer
    FopDone on_done = nullptr;         // may be null
    const FopReport *report = nullptr; // how it asks and tells
    void *context = nullptr;           // for the report's functions
    FopProgress progress;              // what its slot shows
    std::unique_ptr<FopDirs> dirs;     // gone when the work is done

    FileOp();
    ~FileOp();
    FileOp(const FileOp &) = delete;
    FileOp &operator=(const FileOp &) = delete;
};

// What a job is made from. The strings are copied.
struct FopRequest {
    int op = FOP_COPY;
    const char *source_dir = nullptr;
    int count = 0;
    const char *const *names = nullptr;
    const char *dest = nullptr;
    uint32_t flags = 0;
    const SlotWidgets *slot = nullptr; // may be null
    FopDone on_done = nullptr;
    const FopReport *report = nullptr;
    void *context = nullptr;
};

// Creates a job and starts its worker. Null with errno when it cannot be; EINVAL for a count of 0
// or less or a null directory or destination. A relative path holds for the directory current at
// this call.
FileOp *fop(const FopRequest &request);

// The parts of fop: making the job, starting its worker (0, or -1 with errno, the job is then still
// the caller's), the worker itself, which frees it, and freeing one that was never started.
FileOp *fop_create(const FopRequest &request);
int fop_start(FileOp *job);
void *fop_thread(void *job);
void fop_free(FileOp *job);

// The flags that the settings' option word gives a job.
uint32_t fop_config_flags(int op, int count, bool one_dir, uint32_t options);

// out = the two joined, without a double or trailing "/".
void _build_path(std::string &out, const char *dir, const char *name);

// What the starter of jobs needs of the floors above; filled in by app/base.cpp. Main thread.
struct FopHooks {
    void (*get_cut_files)() = nullptr; // reads the marks of cut files again
    int (*uncut)(const char *directory,
                 const char *name) = nullptr; // forgets one that was moved or deleted
    bool (*one_dir_packed)() = nullptr;       // the selection handed over is one directory
};
extern FopHooks gFopHooks;

// Starts a job with the user's settings and a slot in the progress window. 0, or -1 with errno
// after telling the user. Main thread. (In slot_start.cpp.)
int fop_start_cmd(int op, const char *source_dir, int count, const char *const *names,
                  const char *dest);

} // namespace tav

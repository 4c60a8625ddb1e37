// What the passes of the job engine share with each other. All on the worker.
#pragma once

#include "fileops/fop.h"

#include <cerrno>

namespace tav {

// Memory of the job's pool, or null.
void *fop_alloc(FileOp *job, size_t size);
char *fop_strdup(FileOp *job, const char *text);

// A group with room for count names, not yet in the list, or null.
DirGroup *fop_group_new(FileOp *job, int count);

// Runs a system call again while a signal interrupts it.
template <typename Call>
auto fop_retry(Call call) -> decltype(call())
{
    decltype(call()) result;
    int turns = 0;
    do
        result = call();
    while (result == -1 && errno == EINTR && ++turns < 100);
    return result;
}

// The answers of the questions that many places ask.
constexpr int FOP_ANSWER_ABORT = 2; // of "&Continue|&Abort"

// Asks with a formatted text (at most 1023 bytes; only "%s") and buttons as "&One|@&Two|#&Three":
// "@" marks the default, "#" the answer to closing. Returns the answer, from 1.
[[gnu::format(printf, 4, 5)]] int fop_alert(FileOp *job, const char *title, const char *buttons,
                                            const char *format, ...);
[[gnu::format(printf, 3, 4)]] void fop_errinfo(FileOp *job, const char *title, const char *format,
                                               ...);
void fop_ENOMEM(FileOp *job);
int fop_ask(FileOp *job); // FOP_FOLLOW, FOP_LINKS, or -1 to abort

// Splits a button text at "|" and "," into labels, default and closing answer.
void fop_alert_buttons(FopAlert &alert, const char *buttons);

void fop_update_info(FileOp *job, const FopUpdate &update);

// 1 when the job was aborted while it was paused, else 0 once it may go on.
int fop_pause_trap(FileOp *job);

// Waits while paused; true when the job is to stop.
bool fop_stopped(FileOp *job);

// Whole per cent, 0 without a total.
int fop_percent(int64_t done, int64_t total);

// Seconds left: FOP_TIME_FIRST at the first call, FOP_TIME_KEEP when that is not known.
int64_t fop_calc_time_left(FileOp *job, int64_t done, int64_t total);

// Tells on_done about an item.
void fop_item_done(FileOp *job, const char *dir, const char *name);

// Results of one item.
enum FopCopied { FOP_COPIED = 0, FOP_SKIPPED = 1, FOP_END = -1 };

// Asks about a failure of one item, title "Copy/Move", "&Continue|&Abort": FOP_SKIPPED to go on
// without the item, else FOP_END.
[[gnu::format(printf, 2, 3)]] FopCopied fop_ask_error(FileOp *job, const char *format, ...);

// The question for an existing destination.
constexpr char FOP_EXISTS_BUTTONS[] = "&Skip|&Overwrite|Overwrite &All|a&Bort";
constexpr char FOP_EXISTS_TEXT[] = "The '%s' file exists.\nWhat do you want to do ?\n";

// Takes an item off the list: later passes skip it.
void fop_set_dead(FileOp *job, int group, int item);

// Whether a name, at which looking failed with error, is sure to be that of a link that leads
// nowhere.
bool fop_leads_nowhere(int error, int dir, const char *name);

// A selected name as it is looked up in its directory: never from the root.
const char *fop_source_name(const char *name);

// The notice for what would go into itself.
const char *fop_into_itself(const FileOp *job);

// The passes; each 0, or -1 to end the job.
int fop_check_dst(FileOp *job);
int fop_move_files(FileOp *job);
int fop_build_filelist(FileOp *job);
int fop_add_dir(FileOp *job, int group, int item, bool linked);
void fop_copy_files(FileOp *job);
int fop_delete_files(FileOp *job, int show);
int fop_delete_file(FileOp *job, int group, int item,
                    const std::string &dir); // dir: the group's path

// One item of a copy, by its place in the list; item -1 is the finishing pass of the group itself.
// dir: the group's path.
FopCopied fop_copy_file(FileOp *job, int group, int item, const std::string &dir);

// What identifies the content of a file between its copy and its removal; never 0.
uint64_t fop_stamp(const struct stat &status);

} // namespace tav

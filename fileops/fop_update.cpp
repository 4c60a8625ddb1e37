// Progress: what the worker writes down for its slot, the texts made of it, and the waiting of a
// pause.
#include "fileops/fop_update.h"

#include "fileops/fop_internal.h"
#include "fileops/fop_sys.h"

#include <algorithm>
#include <cstdio>

namespace tav {
namespace {

void x_line(std::string &line, const char *label, const char *name)
{
    line = label ? label : "";
    line += name;
}

bool x_only_counts(const FopUpdate &update)
{
    return !update.title && !update.from_name && !update.to_name &&
           update.percent == FOP_PERCENT_KEEP && update.seconds == FOP_TIME_FIRST;
}

} // namespace

void fop_update_info(FileOp *job, const FopUpdate &update)
{
    int error = errno;
    FopProgress &progress = job->progress;
    progress.n_done.store(job->n_done, std::memory_order_relaxed);
    progress.n_items.store(job->n_items, std::memory_order_relaxed);
    if (!x_only_counts(update)) {
        std::lock_guard hold(progress.lock);
        if (update.title)
            progress.title = update.title;
        if (update.from_name)
            x_line(progress.from, update.from_label, update.from_name);
        if (update.to_name)
            x_line(progress.to, update.to_label, update.to_name);
        if (update.percent == FOP_PERCENT_RESET)
            progress.percent = 0;
        else if (update.percent != FOP_PERCENT_KEEP)
            progress.percent = update.percent;
        if (update.seconds != FOP_TIME_KEEP)
            progress.seconds = update.seconds;
        if (update.seconds == FOP_TIME_BLANK)
            progress.at_once = true;
        progress.changes++;
    }
    if (job->report->update)
        job->report->update(job, update);
    errno = error;
}

int fop_pause_trap(FileOp *job)
{
    while (job->pause) {
        if (job->abort)
            return 1;
        gFopSys.delay(FOP_PAUSE_MS);
    }
    return 0;
}

bool fop_stopped(FileOp *job)
{
    fop_pause_trap(job);
    return job->abort != 0;
}

int fop_percent(int64_t done, int64_t total)
{
    if (total <= 0)
        return 0;
    double percent = static_cast<double>(done) / static_cast<double>(total) * 100.0;
    return static_cast<int>(std::clamp(percent, 0.0, 100.0));
}

int64_t fop_calc_time_left(FileOp *job, int64_t done, int64_t total)
{
    timespec now{};
    gFopSys.now(CLOCK_REALTIME, &now);
    timespec &start = job->start_time;
    if (start.tv_sec == 0 && start.tv_nsec == 0) {
        start = now;
        return FOP_TIME_FIRST;
    }
    double elapsed = static_cast<double>(now.tv_sec - start.tv_sec) +
                     static_cast<double>(now.tv_nsec - start.tv_nsec) / 1e9;
    if (elapsed <= 0.001 || done <= 0)
        return FOP_TIME_KEEP;
    double left = static_cast<double>(total - done) / (static_cast<double>(done) / elapsed) + 1.0;
    return left >= 0 && left < 1e15 ? static_cast<int64_t>(left) : FOP_TIME_KEEP;
}

void fop_item_done(FileOp *job, const char *dir, const char *name)
{
    if (job->on_done)
        job->on_done(job, dir, name);
}

std::string shrink_name(std::string_view text, size_t max)
{
    // Characters are counted, not bytes, and none is cut.
    auto width = [](std::string_view part) {
        return static_cast<size_t>(std::count_if(part.begin(), part.end(),
                                                 [](char byte) { return (byte & 0xC0) != 0x80; }));
    };
    if (width(text) <= max)
        return std::string(text);
    size_t begin = text.find(':');
    begin = begin == std::string_view::npos ? 0 : begin + 1;
    if (begin < text.size() && begin > 0 && text[begin] == ' ')
        begin++;
    size_t first = text.find('/', begin);
    if (first == std::string_view::npos)
        return std::string(text);
    size_t left = width(text.substr(first));
    for (size_t at = first; at < text.size(); at++) {
        if (at > first && text[at] == '/' && left < (max > 6 ? max - 6 : 0))
            return std::string(text.substr(0, first + 1)) + "*" + std::string(text.substr(at));
        left -= (text[at] & 0xC0) != 0x80;
    }
    return std::string(text);
}

std::string fop_time_text(int64_t seconds)
{
    char text[48];
    auto s = static_cast<long long>(seconds);
    if (s <= 0)
        return " ";
    if (s <= 59)
        std::snprintf(text, sizeof text, "%lld seconds", s);
    else if (s <= 3599)
        std::snprintf(text, sizeof text, "%lld:%02lld minutes", s / 60, s % 60);
    else
        std::snprintf(text, sizeof text, "%lld:%02lld hours", s / 3600, s / 60 % 60);
    return text;
}

std::string fop_count_text(int64_t n_done, int64_t n_items)
{
    return std::to_string(std::min(n_done + 1, n_items)) + " of " + std::to_string(n_items);
}

} // namespace tav

// The content of a file: cloned, else copied inside the kernel, else read and written; holes stay
// holes. Abort and pause are looked at before every chunk, which is never more than 8 MiB or, as
// far as the last ones tell, 50 ms.
#include "fileops/fop_copy.h"

#include "fileops/fop_sys.h"

#include <algorithm>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

namespace tav {
namespace {

constexpr size_t CHUNK_MAX = 8 << 20;    // bytes
constexpr double CHUNK_SECONDS = 0.05;   // no chunk should take longer
constexpr size_t BIG_BUFFER = 256 << 10; // for large files that must be read and written
constexpr off_t BIG_FILE = 1 << 20;      // from here on a file is large
constexpr off_t TO_THE_END = INT64_MAX;

// A copy on its way.
struct Data {
    FopItem &item;
    FopTarget &target;
    int from;
    int64_t copied = 0; // bytes written; holes not counted
    bool by_range;      // copying inside the kernel is worth a try
    char *buffer;
    size_t buffer_size;
};

void x_show(const Data &data)
{
    FileOp *job = data.item.job;
    int64_t done = job->done_bytes - data.item.status.st_size + data.copied;
    fop_update_info(job, {nullptr, nullptr, nullptr, nullptr, nullptr,
                          fop_percent(done, job->total_bytes),
                          fop_calc_time_left(job, done, job->total_bytes)});
}

// The question of a full disk: FOP_COPIED to try again.
FopCopied x_ask_no_space(const FopItem &item)
{
    int answer = fop_alert(item.job, "Write error", "&Retry|&Skip|&Abort",
                           "Unable to write '%s'\nNo space left on device\n", item.dest.c_str());
    if (answer == 3)
        item.job->abort = 1;
    return answer == 1 ? FOP_COPIED : answer == 3 ? FOP_END : FOP_SKIPPED;
}

// Whether the error says that the kernel's own copying is of no use here at all.
bool x_no_fast_way(int error)
{
    return error == EXDEV || error == EINVAL || error == EOPNOTSUPP || error == ENOSYS ||
           error == ENOTTY || error == EPERM || error == ETXTBSY || error == EBADF;
}

// The old content goes when there is something to take its place, not before.
int x_begin_in_place(FopTarget &target)
{
    if (target.way != FopTarget::IN_PLACE || target.wrote)
        return 0;
    if (fop_retry([&] { return gFopSys.ftruncate(target.fd, 0); }) == -1)
        return -1;
    target.wrote = true;
    return 0;
}

// Writes all of a buffer, asking while the disk is full. Returns its size, -2 to leave the file
// out, -1 when the job was aborted or with errno.
ssize_t _write(Data &data, const char *bytes, size_t size)
{
    for (size_t at = 0; at < size;) {
        if (fop_stopped(data.item.job))
            return -1;
        ssize_t n = x_begin_in_place(data.target);
        if (n == 0)
            n = fop_retry([&] { return gFopSys.write(data.target.fd, bytes + at, size - at); });
        if (n == -1) {
            if (errno != ENOSPC)
                return -1;
            FopCopied answer = x_ask_no_space(data.item);
            if (answer != FOP_COPIED)
                return answer == FOP_SKIPPED ? -2 : -1;
            continue;
        }
        at += static_cast<size_t>(n);
        data.copied += n;
    }
    return static_cast<ssize_t>(size);
}

// Copies up to limit bytes by reading and writing.
FopCopied x_by_buffer(Data &data, off_t limit)
{
    const FopItem &item = data.item;
    while (limit > 0) {
        if (fop_stopped(item.job))
            return FOP_END;
        size_t size = std::min<off_t>(limit, static_cast<off_t>(data.buffer_size));
        ssize_t n = fop_retry([&] { return gFopSys.read(data.from, data.buffer, size); });
        if (n == -1)
            return fop_read_failed(item, errno);
        if (n == 0)
            return FOP_COPIED;
        ssize_t written = _write(data, data.buffer, static_cast<size_t>(n));
        if (written == -2)
            return FOP_SKIPPED;
        if (written == -1)
            return item.job->abort ? FOP_END : fop_write_failed(item, errno);
        limit -= n;
        x_show(data);
    }
    return FOP_COPIED;
}

// A chunk, or less that was left, took so long: so the next, of whatever file, is larger or
// smaller.
void x_adapt_chunk(size_t &chunk, size_t copied, const timespec &before)
{
    timespec after;
    gFopSys.now(CLOCK_MONOTONIC, &after);
    double seconds = static_cast<double>(after.tv_sec - before.tv_sec) +
                     static_cast<double>(after.tv_nsec - before.tv_nsec) / 1e9;
    if (seconds > CHUNK_SECONDS / 2)
        chunk = std::max(chunk / 2, FOP_CHUNK_MIN);
    else if (seconds < CHUNK_SECONDS / 8 && copied == chunk)
        chunk = std::min(chunk * 2, CHUNK_MAX);
}

// Copies up to limit bytes inside the kernel; limit becomes what is left for reading and writing.
FopCopied x_by_range(Data &data, off_t &limit)
{
    size_t &chunk = data.item.job->dirs->chunk;
    while (limit > 0 && data.by_range) {
        if (fop_stopped(data.item.job))
            return FOP_END;
        timespec before;
        gFopSys.now(CLOCK_MONOTONIC, &before);
        size_t size = std::min<off_t>(limit, static_cast<off_t>(chunk));
        ssize_t n = fop_retry([&] { return gFopSys.copy_range(data.from, data.target.fd, size); });
        if (n == -1 && errno == ENOSPC) {
            FopCopied answer = x_ask_no_space(data.item);
            if (answer != FOP_COPIED)
                return answer;
            continue;
        }
        if (n <= 0) {
            // Which side failed, or whether this is the end, shows when it is read and written.
            data.item.job->dirs->no_range |= n == -1 && x_no_fast_way(errno);
            data.by_range = false;
            return FOP_COPIED;
        }
        limit -= n;
        data.copied += n;
        x_adapt_chunk(chunk, static_cast<size_t>(n), before);
        x_show(data);
    }
    return FOP_COPIED;
}

FopCopied x_copy_part(Data &data, off_t limit)
{
    FopCopied result = x_by_range(data, limit);
    return result == FOP_COPIED ? x_by_buffer(data, limit) : result;
}

// The next part of a file that is no hole: 1, 0 when there is none, -1 when holes cannot be told.
int x_next_part(int from, off_t at, off_t &begin, off_t &end)
{
    begin = gFopSys.lseek(from, at, SEEK_DATA);
    if (begin == -1)
        return errno == ENXIO ? 0 : -1;
    end = gFopSys.lseek(from, begin, SEEK_HOLE);
    return end > begin ? 1 : -1;
}

bool x_seek_both(const Data &data, off_t at)
{
    return gFopSys.lseek(data.from, at, SEEK_SET) != -1 &&
           gFopSys.lseek(data.target.fd, at, SEEK_SET) != -1;
}

// What the source is long now.
off_t x_source_size(const Data &data)
{
    struct stat now;
    return gFopSys.fstat(data.from, &now) == 0 ? now.st_size : data.item.status.st_size;
}

// Copies the parts of a file that holds holes.
FopCopied x_copy_sparse(Data &data)
{
    off_t at = 0, size = 0, begin = 0, end = 0;
    int found;
    // The size is looked at before the next part: what is written behind it meanwhile is no hole.
    while (size = x_source_size(data),
           (found = x_next_part(data.from, at, begin, end)) == 1 && x_seek_both(data, begin)) {
        FopCopied result = x_copy_part(data, end - begin);
        if (result != FOP_COPIED)
            return result;
        at = end;
    }
    if (found == 0) {
        if (x_begin_in_place(data.target) == 0 &&
            fop_retry([&] { return gFopSys.ftruncate(data.target.fd, size); }) == 0)
            return FOP_COPIED;
        return fop_write_failed(data.item, errno);
    }
    if (!x_seek_both(data, at)) // what holes there are cannot be told: the rest is content
        return fop_read_failed(data.item, errno);
    return x_copy_part(data, TO_THE_END);
}

bool x_clone(const FopItem &item, int from, const FopTarget &target)
{
    bool &no_clone = item.job->dirs->no_clone;
    if (no_clone || item.status.st_size == 0)
        return false;
    if (fop_retry([&] { return gFopSys.clone(target.fd, from); }) == 0)
        return true;
    no_clone = x_no_fast_way(errno);
    return false;
}

// A larger buffer than the job's for a large file, or the job's.
void x_choose_buffer(Data &data)
{
    FileOp *job = data.item.job;
    data.buffer = job->buf;
    data.buffer_size = static_cast<size_t>(job->buf_size);
    if ((job->flags & FOP_BUF_MASK) == 0 && data.item.status.st_size >= BIG_FILE) {
        if (!job->dirs->big_buffer)
            job->dirs->big_buffer = static_cast<char *>(fop_alloc(job, BIG_BUFFER));
        if (job->dirs->big_buffer) {
            data.buffer = job->dirs->big_buffer;
            data.buffer_size = BIG_BUFFER;
        }
    }
}

} // namespace

FopCopied fop_copy_data(FopItem &item, int from, FopTarget &target)
{
    const struct stat &status = item.status;
    bool in_place = target.way == FopTarget::IN_PLACE;
    if (fop_stopped(item.job))
        return FOP_END;
    if (!in_place && x_clone(item, from, target))
        return FOP_COPIED;
    Data data{.item = item,
              .target = target,
              .from = from,
              .by_range = false,
              .buffer = nullptr,
              .buffer_size = 0};
    data.by_range = !in_place && !item.job->dirs->no_range && status.st_size > item.job->buf_size;
    x_choose_buffer(data);
    if (status.st_size >= BIG_FILE)
        (void)::posix_fadvise(from, 0, 0, POSIX_FADV_SEQUENTIAL);
    const bool sparse = status.st_blocks * 512 < status.st_size;
    FopCopied result = sparse ? x_copy_sparse(data) : x_copy_part(data, TO_THE_END);
    // An empty file leaves nothing of the old content either.
    if (result == FOP_COPIED && x_begin_in_place(target) == -1)
        return fop_write_failed(item, errno);
    return result;
}

} // namespace tav

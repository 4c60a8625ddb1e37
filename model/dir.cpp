// Reading a directory into a listing: entries are taken from the ones of the last read, filled
// through the directory's descriptor, filtered, and added unless the name is there already.
#include "model/dir.h"

#include "app/config.h"
#include "model/dir_order.h"
#include "model/dir_pace.h"
#include "model/dir_seen.h"
#include "model/es.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <new>
#include <string_view>
#include <unistd.h>

namespace tav {

// Never destroyed: who leaves need not wait until a million entries are freed one by one.
DirListing &gDir = *new DirListing{{}, {}, false, {}, 0, 0, 0, 0, 0, DIR_PARENT, 0};
DirHooks gDirHooks = {};

size_t gDirPaced = 0;

void dir_pace_now()
{
    gDirPaced = 0;
    if (gDirHooks.pending)
        gDirHooks.pending();
}

namespace {

constexpr size_t GROW_BY = 128;            // slots
constexpr size_t BUFFER_SIZE = 256 * 1024; // bytes of names that one call delivers
constexpr int64_t EVENTS_EVERY = 4;        // milliseconds

int sReadCount = 0; // entries listed so far by the read that is shown

// What one read carries along.
struct Reading {
    DirListing &listing;
    int fd;
    EsPattern filter;
    bool hide_dot;
    DirEntry *in_hand;  // the entry left over from a skipped name, or null
    DirSeen seen;       // the names listed so far
    int64_t events_due; // by gDirCalls.clock
};

int64_t x_clock()
{
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return int64_t(now.tv_sec) * 1000 + now.tv_nsec / 1000000;
}

void x_show_progress()
{
    char text[32];
    snprintf(text, sizeof text, "%d read", sReadCount);
    if (gDirHooks.progress_show)
        gDirHooks.progress_show(text);
}

// Every listed entry becomes a spare: the list is empty then. The last one is taken first, so they
// are put roughly in the order of their addresses, downwards: filling them in the order in which
// they were sorted would miss the cache at every step.
void x_recycle(DirListing &listing)
{
    listing.spare += listing.count;
    listing.total = 0;
    listing.current = DIR_PARENT;
    listing.count = listing.ndirs = listing.nselected = 0;
    sReadCount = 0;
    gDirPaced = 0;
    try {
        dir_order_addresses(listing.entries.data(), static_cast<size_t>(listing.spare));
    } catch (const std::bad_alloc &) {
        return; // slower, no worse
    }
}

// An entry to fill: the one in hand, else the last spare, else a new one. Empty but for its link
// buffer.
DirEntry *x_take_entry(Reading &reading)
{
    DirListing &listing = reading.listing;
    DirEntry *entry = reading.in_hand;
    reading.in_hand = nullptr;
    if (!entry && listing.spare > 0) {
        listing.spare--;
        std::swap(entry, listing.entries[static_cast<size_t>(listing.count) +
                                         static_cast<size_t>(listing.spare)]);
    }
    if (!entry)
        return dir_new_entry();
    entry->flags = 0;
    entry->name[0] = 0;
    if (entry->link)
        entry->link[0] = 0;
    return entry;
}

void x_grow(DirListing &listing)
{
    try {
        listing.entries.resize(listing.entries.size() + GROW_BY);
    } catch (const std::bad_alloc &) {
        exit(1);
    }
}

// Appends an entry. The spare that stands in its slot goes behind the others.
void x_append(DirListing &listing, DirEntry *entry)
{
    size_t at = static_cast<size_t>(listing.count);
    if (at >= listing.entries.size())
        x_grow(listing);
    if (listing.spare > 0) {
        size_t behind = at + static_cast<size_t>(listing.spare);
        if (behind < listing.entries.size()) {
            listing.entries[behind] = listing.entries[at];
        } else {
            dir_free_entry(listing.entries[at]);
            listing.spare--;
        }
    }
    listing.entries[at] = entry;
    listing.count++;
    listing.total += dir_size32(*entry);
    if (dir_is_directory(*entry))
        listing.ndirs++;
    sReadCount = listing.count;
}

// Makes an entry that is no longer needed a spare, or frees it when there is no slot.
void x_discard_entry(DirListing &listing, DirEntry *entry)
{
    size_t behind = static_cast<size_t>(listing.count) + static_cast<size_t>(listing.spare);
    if (behind >= listing.entries.size())
        return dir_free_entry(entry);
    listing.entries[behind] = entry;
    listing.spare++;
    free(entry->link);
    entry->link = nullptr;
}

bool x_is_hidden(const Reading &reading, const char *name)
{
    if (name[0] != '.')
        return false;
    return reading.hide_dot || name[1] == 0 || (name[1] == '.' && name[2] == 0);
}

// The target's text, and the target's status in place of the link's own when it can be reached.
void x_fill_link(const Reading &reading, const char *name, DirEntry *entry)
{
    entry->flags |= DIR_LINK;
    struct stat target;
    if (gDirCalls.status(reading.fd, name, &target, 0) == 0)
        entry->stat = target;
    else
        entry->flags |= DIR_BROKEN;
    if (!entry->link)
        entry->link = static_cast<char *>(calloc(1, DIR_LINK_SIZE));
    if (!entry->link)
        exit(1);
    ssize_t size = gDirCalls.link(reading.fd, name, entry->link, DIR_LINK_SIZE - 1);
    if (size < 0)
        snprintf(entry->link, DIR_LINK_SIZE, "(unable to read link info)");
    else
        entry->link[size] = 0;
}

// Fills the entry from the name; false when the name is to be skipped.
bool x_fill(Reading &reading, std::string_view name, DirEntry *entry)
{
    uint32_t hash = DirSeen::hash(name);
    reading.seen.prefetch(hash);
    if (gDirCalls.status(reading.fd, name.data(), &entry->stat, AT_SYMLINK_NOFOLLOW) != 0)
        return false;
    if (!dir_is_directory(*entry) && !es_pattern_matches(reading.filter, name.data()))
        return false;
    if (S_ISLNK(entry->stat.st_mode))
        x_fill_link(reading, name.data(), entry);
    memcpy(entry->name, name.data(), name.size() + 1);
    return reading.seen.add(reading.listing.entries, reading.listing.count, name, hash);
}

// One name of the directory. A name that is too long for an entry is left out, never cut.
void x_read_name(Reading &reading, const char *name)
{
    size_t size = strlen(name);
    if (x_is_hidden(reading, name) || size >= sizeof(DirEntry::name))
        return;
    DirEntry *entry = x_take_entry(reading);
    if (x_fill(reading, {name, size}, entry))
        x_append(reading.listing, entry);
    else
        reading.in_hand = entry;
}

// Lets waiting events run when that is due. False: stop reading.
bool x_events(Reading &reading)
{
    if (!gDirHooks.pending)
        return true;
    if (gDirCalls.clock() < reading.events_due)
        return true;
    bool go_on = gDirHooks.pending();
    reading.events_due = gDirCalls.clock() + EVENTS_EVERY;
    return go_on;
}

// All names; ends early when told to, or when the directory cannot be read further.
void x_read_names(Reading &reading)
{
    std::unique_ptr<char[]> buffer(new (std::nothrow) char[BUFFER_SIZE]);
    if (!buffer)
        exit(1);
    for (;;) {
        ssize_t size = gDirCalls.getdents(reading.fd, buffer.get(), BUFFER_SIZE);
        if (size < 0 && errno == EINTR)
            continue;
        if (size <= 0)
            return;
        for (ssize_t at = 0; at < size;) {
            auto record = reinterpret_cast<const dirent64 *>(buffer.get() + at);
            at += record->d_reclen;
            x_read_name(reading, record->d_name);
            if (!x_events(reading))
                return;
        }
    }
}

// Makes the path the working directory and opens it. A descriptor, or -1 with errno.
int x_enter(const DirListing &listing)
{
    if (!listing.has_path) {
        errno = ENOENT;
        return -1;
    }
    if (chdir(listing.path.c_str()) != 0)
        return -1;
    return open(".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
}

} // namespace

DirCalls gDirCalls = {::getdents64, ::fstatat, ::readlinkat, x_clock};

int dir_read(DirListing &listing, DirCompare compare, int ascending)
{
    if (gDirHooks.status)
        gDirHooks.status("Reading Directory");
    x_recycle(listing);
    if (gDirHooks.progress_start)
        gDirHooks.progress_start(x_show_progress);
    int fd = x_enter(listing);
    if (fd < 0)
        return -1; // the progress goes on, meant so: the next read takes it over
    bool hide_dot = gConfig->flags & CONFIG_HIDE_DOT;
    int64_t due = gDirCalls.clock() + EVENTS_EVERY;
    Reading reading = {listing, fd, es_pattern_prepare(listing.filespec.c_str()), hide_dot, nullptr,
                       {},      due};
    x_read_names(reading);
    close(fd);
    if (reading.in_hand)
        x_discard_entry(listing, reading.in_hand);
    dir_sort(listing, compare, ascending);
    if (gDirHooks.progress_end)
        gDirHooks.progress_end();
    return 0;
}

void dir_release(DirListing &listing)
{
    for (DirEntry *entry : listing.entries)
        if (entry)
            dir_free_entry(entry);
    listing.entries.clear();
    listing.entries.shrink_to_fit();
    listing.total = 0;
    listing.current = DIR_PARENT;
    listing.count = listing.ndirs = listing.nselected = listing.nseldirs = listing.spare = 0;
}

} // namespace tav

// The directory that is shown: its entries, reading them, sorting them, and the names and
// permission texts that go with them. Knows no Qt; the main thread owns all of it.
#pragma once

#include <cstdint>
#include <string>
#include <sys/stat.h>
#include <sys/types.h>
#include <vector>

namespace tav {

// Bits of DirEntry::flags.
constexpr uint8_t DIR_CURRENT = 0x01;  // under the list's cursor; set and cleared by the list alone
constexpr uint8_t DIR_SELECTED = 0x02; // part of the selection; set and cleared by the list alone
constexpr uint8_t DIR_LINK = 0x04;     // lstat reported a symbolic link
constexpr uint8_t DIR_BROKEN = 0x10;   // the link's target could not be reached

// Special values of an entry's index.
constexpr int DIR_PARENT = -1; // the ".." row
constexpr int DIR_NONE = -2;   // no entry

constexpr size_t DIR_LINK_SIZE = 1024; // bytes of a link buffer; the text is always terminated

// One entry. Lives as long as the listing that recycles it; made zero-filled.
struct DirEntry {
    struct stat stat; // of the link's target when that can be reached, else of the entry itself
    char name[256];   // bytes as the file system has them, no directory part, terminated
    uint8_t flags;    // DIR_*
    intptr_t item;    // the row that shows the entry, set by the list; the model never looks at it
    char *link;       // DIR_LINK_SIZE bytes with the link's target, or null; kept when recycled
};

// The listing of one directory. entries[0, count) are shown, in display order;
// entries[count, count + spare) wait to be used again; the remaining slots are null.
struct DirListing {
    std::vector<DirEntry *> entries; // owned; its size is the capacity, grown by 128
    std::string path;                // absolute; meaningful only when has_path
    bool has_path;                   // false before the first directory is set
    std::string filespec;            // name filter, "*" for all
    uint64_t total;                  // sum of the low 32 bits of the sizes of all listed entries
    int count;                       // listed entries
    int ndirs;                       // of these, directories (a link to one counts)
    int nselected;                   // entries with DIR_SELECTED, kept by the list
    int nseldirs;                    // selected directories, kept by the list
    int current;                     // index of the current entry, DIR_PARENT or DIR_NONE
    int spare;                       // entries waiting behind the listed ones
};

extern DirListing &gDir; // the one listing of the program: all zero, current -1

// What a read tells its surroundings; every member may be null. Set once by the main window.
struct DirHooks {
    void (*status)(const char *text);        // a text for the left status pane
    void (*progress_start)(void (*tick)());  // call tick every 300 ms from now on
    void (*progress_end)();                  // call tick once more, then no longer
    void (*progress_show)(const char *text); // a text for the right status pane
    bool (*pending)(); // let waiting events run; false: stop reading here (what was read is sorted)
};
extern DirHooks gDirHooks;

// The system calls of a read, and its clock; tests put others in their place.
struct DirCalls {
    ssize_t (*getdents)(int fd, void *buffer, size_t size);                  // as getdents64
    int (*status)(int fd, const char *name, struct stat *status, int flags); // as fstatat
    ssize_t (*link)(int fd, const char *name, char *buffer, size_t size);    // as readlinkat
    int64_t (*clock)(); // milliseconds, never going back
};
extern DirCalls gDirCalls;

extern uint64_t
    gDirAllocated; // entries made anew since the program began; reused ones do not count

// Three-way comparison of two entries: negative, 0, positive.
using DirCompare = int (*)(const DirEntry &a, const DirEntry &b);

// Reads listing.path into the listing and sorts it. 0, or -1 (with errno) when there is no path, or
// it cannot be entered or opened; the listing is then empty. Makes the path the working directory.
// When gDirHooks.pending says stop, what was read so far stays and the answer is 0.
int dir_read(DirListing &listing, DirCompare compare, int ascending);

// A zero-filled entry for a listing that is filled by hand; ends the program when memory is out.
DirEntry *dir_new_entry();
void dir_free_entry(DirEntry *entry);

// Frees every entry, listed and spare; path and filter stay.
void dir_release(DirListing &listing);

// True for a directory, after link resolution.
inline bool dir_is_directory(const DirEntry &entry) { return S_ISDIR(entry.stat.st_mode); }

// Calls f with each listed entry and its index, in order. The entries of a large listing lie all
// over the memory, so the ones to come are fetched early.
template <typename F>
void dir_each(const DirListing &listing, F f)
{
    constexpr int AHEAD = 12;
    DirEntry *const *entries = listing.entries.data();
    for (int i = 0; i < listing.count; i++) {
        if (i + AHEAD < listing.count)
            __builtin_prefetch(&entries[i + AHEAD]->flags);
        f(*entries[i], i);
    }
}

// The size as all sums and sorts take it: the low 32 bits.
inline uint32_t dir_size32(const DirEntry &entry)
{
    return static_cast<uint32_t>(entry.stat.st_size);
}

// Sorts the listed entries in place; a null comparison leaves them alone. Any comparison is safe,
// the result is repeatable. Directories come first, in both directions, when gConfig says so.
void dir_sort(DirListing &listing, DirCompare compare, int ascending);

// Sorted by name, all-digit names stand by their value and the others by their bytes, and where the
// two kinds meet bytes decide. Descending is exactly the reverse. Equal values stand by bytes.
int dir_cmp_name(const DirEntry &a, const DirEntry &b); // two numbers by value, else by bytes
int dir_cmp_size(const DirEntry &a, const DirEntry &b); // 32-bit difference, taken as signed
int dir_cmp_date(const DirEntry &a, const DirEntry &b);
int dir_cmp_user(const DirEntry &a, const DirEntry &b);
int dir_cmp_group(const DirEntry &a, const DirEntry &b);
int dir_cmp_permissions(const DirEntry &a, const DirEntry &b);
int dir_cmp_link(const DirEntry &a, const DirEntry &b); // 0 unless both are links
int dir_cmp_dir(const DirEntry &a, const DirEntry &b);

constexpr size_t DIR_NAME_SIZE = 16; // buffer for a user or group name: 15 characters and a NUL

// Writes the user's or group's name (its decimal number when it has none) into buffer. Returns its
// length, but 0 when the name had to be fetched from the system just now.
int dir_get_username(uid_t uid, char (&buffer)[DIR_NAME_SIZE]);
int dir_get_groupname(gid_t gid, char (&buffer)[DIR_NAME_SIZE]);

// Where names come from; tests put tables of their own here. Null for an unknown id.
struct DirIdSource {
    const char *(*user)(uid_t uid);
    const char *(*group)(gid_t gid);
};
extern DirIdSource gDirIds;
void dir_forget_names(); // empties both caches

// Writes the permission text of one part of a mode: 1 owner, 2 group, 3 others (three characters
// each), 4 sticky, 0 type (one character each). Nothing is terminated, nothing written for another
// part.
void dir_get_permissions(mode_t mode, char *text, int part);

// Sets or clears the bits of *mode that the letters name for a part: "rwx", "s" or "S" (1, 2), "s"
// (4).
void dir_set_permissions(mode_t *mode, const char *letters, int part, int set);

} // namespace tav

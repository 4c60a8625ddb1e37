// One item of a copy on its way; shared by the files that copy the different kinds.
#pragma once

#include "fileops/fop_dirs.h"
#include "fileops/fop_internal.h"

namespace tav {

struct FopItem {
    FileOp *job = nullptr;
    int group = 0;
    int item = -1;     // -1: the finishing pass of the group's own directory
    int from_dir = -1; // source directory and the name in it
    const char *from = "";
    int from_fd = -1; // the source, when it is open already; fop_copy_file closes it
    int to_dir = -1;  // destination directory and the name in it; -1 with to_error
    const char *to = "";
    int to_error = 0;   // why there is no destination directory
    std::string source; // both paths, for texts
    std::string dest;
    struct stat status {};   // of the source; through a link when links are followed
    uint64_t link_stamp = 0; // moves with followed links: of the link itself, which will be removed
    bool exists = false;     // the destination, through links
    int dest_error = 0;      // errno of looking at it
    struct stat dest_status {};
};

// "Can't copy file(s) into itself."
FopCopied fop_refuse_itself(const FopItem &item);

// The questions for a source that cannot be read and a destination that cannot be written.
FopCopied fop_read_failed(const FopItem &item, int error);
FopCopied fop_write_failed(const FopItem &item, int error);

FopCopied fop_copy_regular(FopItem &item); // fop_file.cpp
int fop_open_source(
    FopItem &item); // a regular file, whose status is then the truth: 0, or -1 with errno
FopCopied fop_copy_directory(FopItem &item);   // fop_tree.cpp
FopCopied fop_finish_directory(FopItem &item); // fop_tree.cpp
void fop_finish_modes(FileOp *job);            // every directory that still waits for its mode
FopCopied fop_copy_link(FopItem &item);        // fop_special.cpp
FopCopied fop_copy_fifo(FopItem &item);        // fop_special.cpp

// Asks "The '%s' file exists." unless overwriting is on: FOP_COPIED to overwrite.
FopCopied fop_ask_overwrite(const FopItem &item);

// Reports an owner that could not be set, once per job.
FopCopied fop_ask_owner(const FopItem &item);

// Hidden siblings: what a copy is called until it is complete, where it cannot be without a name.
std::string fop_temp_name();                // unique among this machine's processes
void fop_sweep_temps(FileOp *job, int dir); // removes those of processes that are no longer there

constexpr int FOP_TEMP_TURNS =
    100; // names tried: a process long gone may have had this one's number

// What make(name) gives for a hidden name that is free in dir, or -1 with errno and temp empty.
template <typename Make>
int fop_make_temp(FileOp *job, int dir, std::string &temp, Make make)
{
    fop_sweep_temps(job, dir);
    int result = -1;
    for (int turn = 0; turn < FOP_TEMP_TURNS; turn++) {
        temp = fop_temp_name();
        result = fop_retry([&] { return make(temp.c_str()); });
        if (result != -1 || errno != EEXIST)
            break;
    }
    if (result == -1)
        temp.clear();
    return result;
}

// Where the content of a regular file goes (fop_target.cpp).
struct FopTarget {
    enum Way {
        UNNAMED,  // a file without a name, which gets it when it is complete
        SIBLING,  // a hidden name, renamed when it is complete
        IN_PLACE, // the existing file itself
    };
    Way way = UNNAMED;
    int fd = -1;
    std::string temp;          // the hidden name, empty while there is none
    bool replace = false;      // takes the place of what is called that
    int old_fd = -1;           // the existing file, open for writing
    struct stat old {};        // and what it was
    bool wrote = false;        // in place: the old content is gone
    struct stat made {};       // the target as it was opened
    bool through_link = false; // the existing file was reached through a link
};

// Opens the target for a regular file: 0, or -1 with errno.
int fop_target_open(const FopItem &item, FopTarget &target);

// Gives the complete file its name and closes it: 0, or -1 with errno (EEXIST when something is
// called that meanwhile and must not be replaced unasked; the file then stays open to be given a
// name again).
int fop_target_commit(const FopItem &item, FopTarget &target);

// Gives it up: nothing of it stays.
void fop_target_drop(const FopItem &item, FopTarget &target);

// Copies the content from the current position of from; asks about failures itself (fop_data.cpp).
FopCopied fop_copy_data(FopItem &item, int from, FopTarget &target);

// Owner, extended attributes, mode and times of a regular file's copy (fop_attr.cpp): 0, or -1 with
// errno. owner tells whether the owner is the source's; that it could not be set is no failure.
int fop_copy_attributes(const FopItem &item, int from, const FopTarget &target, bool &owner);

// All extended attributes; the access list comes from acl_from. How many were set, or -1 with
// errno.
constexpr int FOP_ACL_NONE = -1; // the access list stays as it is
int fop_copy_xattrs(int from, int to, int acl_from);

// Whether what was made belongs to the source's owner and group.
bool fop_has_owner(const struct stat &made, const struct stat &source);

// What the target cannot hold, or this user may not set there, is no failure of a copy.
bool fop_cannot_hold(int error);

} // namespace tav

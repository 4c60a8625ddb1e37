// The directories of a job as descriptors. Below the selected names every step is one openat from a
// directory that is known, following no link that the job was not told to follow, and is checked by
// device and inode: whatever is swapped meanwhile, nothing else is ever reached, and no path is too
// long.
#pragma once

#include "fileops/fop.h"

namespace tav {

// The sides of a job.
enum FopSide { FOP_SOURCE, FOP_DEST };

constexpr int FOP_DIRS_KEPT =
    6; // open directories per side; 50 jobs have to share 1,024 descriptors

constexpr size_t FOP_CHUNK_MIN = 64 << 10; // bytes of the smallest chunk copied inside the kernel

struct FopDirs {
    struct Open {
        int group = -1;    // whose directory it is
        int fd = -1;       // -1 while there is none
        unsigned used = 0; // turn of the last use
    };
    int base = -100; // AT_FDCWD, or the current directory at the start when a path is relative
    int root[2] = {-1, -1}; // the source directory; the destination, or its parent when single
    Open open[2][FOP_DIRS_KEPT];
    unsigned turn = 0;
    int path_group = -1; // the group that path is of
    std::string path;
    bool single = false;   // the one item is copied as dest itself
    std::string dest_name; // then: the last component of dest
    bool above_known = false;
    std::vector<FopId> above; // the root of the destination and every directory above it
    dev_t dest_dev = 0;       // file system of the destination
    int next_child = 1;       // no group before this one belongs to a directory still to be copied
    bool no_unnamed = false;  // the destination cannot hold unnamed files
    bool no_clone = false;    // cloning between the two sides does not work
    bool no_range = false;    // nor does copying inside the kernel
    size_t chunk = FOP_CHUNK_MIN; // of the next copy inside the kernel, as the last ones tell
    char *big_buffer = nullptr;   // for large files, made when the first is met
    FopId swept;                  // the directory last looked through for left hidden siblings
    bool other_fs = false;        // something was written outside the destination's own file system

    ~FopDirs();
};

// Null with errno when a relative path cannot be held.
std::unique_ptr<FopDirs> fop_dirs_new(const FileOp &job);

// A descriptor (O_PATH) of a group's directory, or -1 with errno. Borrowed: good until two others
// of the same side were asked for.
int fop_dir(FileOp *job, FopSide side, int group);

// The name that an item has in the destination directory of its group.
const char *fop_dest_name(const FileOp *job, int group, const char *name);

// The path of a group's directory, of an item in it (null: of the directory), and of where it goes.
void fop_group_dir(const FileOp *job, int group, std::string &out);
void fop_source_path(const FileOp *job, int group, const char *name, std::string &out);
void fop_dest_path(const FileOp *job, const std::string &source, std::string &out);

// Whether the directory is the destination or lies above it.
bool fop_is_above_dest(FileOp *job, const FopId &id);

inline FopId fop_id(const struct stat &status) { return {status.st_dev, status.st_ino}; }

// status of a path that is relative to the job's own working directory.
int fop_stat_path(FileOp *job, const char *path, struct stat *status, int flags);

} // namespace tav

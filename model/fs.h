// Small questions about paths.
#pragma once

namespace tav {

constexpr unsigned FS_DOT_NAMES = 0x02; // names beginning with "." count as subdirectories

// -1 when stat fails; 0 when the path is no directory; else its link count, at least 2 when that is
// 0.
int fs_path_is_directory(const char *path);

// Whether parent joined with name (either may be null) has a subdirectory: above 0 yes, 0 no, -1
// when it cannot be read. Follows no link.
int fs_path_has_subdirectories(const char *parent, const char *name, unsigned flags);

} // namespace tav

// Text helpers: paths, ages and dates, byte counts, name patterns. Pure functions, any thread (but
// ll2str, which keeps its text).
#pragma once

#include <cstdint>
#include <ctime>
#include <string>

namespace tav {

// dst = dir, a "/" where one is missing, name; then trailing "/" go while dst is longer than 2. Either
// part may be null. Returns the length of dst.
int es_construct_fullpath(std::string &dst, const char *dir, const char *name);

// Cuts the last component off; one trailing "/" is ignored. Returns the new length.
int es_remove_subdirectory(std::string &path);

// Reduces runs of "/" to one (two at the start) and drops a trailing run.
void es_strip_pathname(std::string &path);

// dst = a text for the time (seconds since the epoch), beginning with a blank: mode 0 its age, 1 a
// recent time, 2 date and time; any other mode leaves dst alone. Returns the length of dst.
int es_generate_time_string(std::string &dst, const time_t *time, int mode);

// The clock that ages are taken from; tests set it. Null: the system's.
extern time_t (*gEsClock)();

// dst = the count with raw remainders ("1.512KB"). Returns the length of dst.
int es_generate_byte_string(std::string &dst, int32_t bytes);

// The count in binary units with one decimal. The text lasts until the next call; main thread.
const char *ll2str(uint64_t bytes);

// 0 when the name matches: alternatives between "|", each with "*", "?", "[...]" and backslash; a
// leading "^" ignores case. Takes time linear in the pattern times the name at worst.
int es_strcmp(const char *name, const char *pattern);


} // namespace tav

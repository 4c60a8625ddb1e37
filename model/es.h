// Text helpers: paths, ages and dates, byte counts, name patterns. Pure functions, any thread (but
// ll2str, which keeps its text).
#pragma once

#include <cstdint>
#include <ctime>
#include <string>
#include <vector>

namespace tav {

// dst = dir, a "/" where one is missing, name; then trailing "/" go while dst is longer than 2.
// Either part may be null, and may lie in dst. Returns the length of dst.
int es_construct_fullpath(std::string &dst, const char *dir, const char *name);

// Cuts the last component off; one trailing "/" is ignored. Returns the new length.
int es_remove_subdirectory(std::string &path);

// Reduces runs of "/" to one (two at the start) and drops a trailing run.
void es_strip_pathname(std::string &path);

// dst = a text for the time (seconds since the epoch), beginning with a blank: mode 0 its age, 1 a
// recent time, 2 date and time; any other mode leaves dst alone. A time to come has the age 0; one
// that no calendar holds gives " ?". Returns the length of dst.
int es_generate_time_string(std::string &dst, const time_t *time, int mode);

// The clock that ages are taken from; tests set it. Null: the system's.
extern time_t (*gEsClock)();

// dst = the count with raw remainders ("1.512KB"). Returns the length of dst.
int es_generate_byte_string(std::string &dst, int32_t bytes);

// The count in binary units with one decimal. The text lasts until the next call; main thread.
const char *ll2str(uint64_t bytes);

// A pattern made ready for many names: its alternatives as bytes and as characters of LC_CTYPE.
// Holds no pointer into the text it came from. Valid as long as LC_CTYPE stays; any thread may read
// it.
struct EsPattern {
    struct Alternative {
        std::string bytes;
        std::wstring wide; // the same as characters, when it is text at all
        bool ascii;        // bytes and characters are the same
        bool is_text;      // every byte belongs to a character
        bool any;          // nothing but "*": matches everything
    };
    std::vector<Alternative> alternatives;
    bool fold;       // case does not count; the alternatives are lower-cased already
    bool any;        // some alternative matches everything
    char lower[128]; // the lower case of each ASCII character; 0 where that is not ASCII
};
EsPattern es_pattern_prepare(const char *pattern);
bool es_pattern_matches(const EsPattern &pattern, const char *name);

// 0 when the name matches: alternatives between "|", each with "*", "?", "[...]" and backslash as
// fnmatch takes them without flags; a leading "^" ignores case. At worst takes time in proportion
// to the pattern times the name. Character ranges go by code, as with LC_COLLATE "C".
int es_strcmp(const char *name, const char *pattern);

} // namespace tav

// Associations: which commands open, view and edit the files whose names match a pattern. The table
// is read at start and changes only when the associations dialog is confirmed. Main thread only.
#pragma once

#include "commands/as_match.h"

#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

namespace tav {

enum AssocCommandKind { AS_OPEN = 0, AS_VIEW = 1, AS_EDIT = 2 };

// One row of the table. A blank command means that there is none of that kind.
struct Association {
    std::string pattern; // alternatives between "|"; a leading "^" ignores case
    std::string open;
    std::string edit;
    std::string view;
    AsMatch match; // the pattern, ready to be matched
};

extern std::vector<Association> apat; // the live table; the first row that matches decides

// The table's file, header line and rows, as it is written.
extern const char AS_HEADER[];
constexpr size_t AS_LINE_SIZE = 1024; // what the reader takes at once, a terminator included

// What a malformed file leads to: shows the message and ends the program with status 1. Set by the
// main program; without it the message goes to standard error.
extern void (*gAsFatal)(const char *message);

// Shows the message and ends the program with status 1.
[[noreturn]] void as_fatal(const char *message);
constexpr const char *AS_NO_MEMORY = "Unable to allocate memory";

// Loads the table from directory/file_name; the built-in rows when that cannot be opened (a null
// directory too). Lines that are no associations are fatal.
void init_read_associations(const char *directory, const char *file_name);

// The same without the end of the program: 0, or -1 with the message, which is empty when memory is
// out.
int as_read(const char *path, std::string &message);

// Replaces the file that the table was read from. 0, or -1 with errno.
int as_write();

// Fills the table with the built-in rows.
void as_set_defaults();

// Appends a row.
void _add_pat(const char *pattern, const char *open, const char *view, const char *edit);

// Index of the first row whose pattern matches the name, or -1.
int _get_pat_idx(const char *file_name);

// The command of that kind of the first row that matches; null when there is none or it is blank.
const char *_get_pat_cmd(const char *file_name, AssocCommandKind kind);

// The same of one row.
const char *as_command(const Association &row, AssocCommandKind kind);

// True when the text is empty or only white space.
bool isempty(const char *text);

// A row as it stands in the file and in the dialog: pattern, open, view, edit with TABs between.
std::string as_join(const Association &row);

// Cuts such a text into a row: four fields, missing ones empty, further ones dropped.
Association as_split(std::string_view line);

// Why the entry dialog must not take such a row, null when it may: what the reader would die of or
// skip.
const char *as_refuse(std::string_view pattern, std::string_view line);

// A description of the file in one line: what the system's classifier says, newline included, else
// by the mode. 1, or 0 with description left alone. path may be relative to the shown directory.
int as_get_filetype(const char *path, mode_t mode, std::string &description);

} // namespace tav

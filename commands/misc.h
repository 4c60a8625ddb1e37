// Building and launching commands, and small routines around paths and texts. Knows no Qt. Main
// thread only; nothing here waits for a program that it has started.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <sys/types.h>

namespace tav {

constexpr size_t MISC_ARGUMENTS = 20;   // arguments of a command line; what follows is dropped
constexpr int MISC_CHECKS = 6;          // looks at a new child, the first at once
constexpr unsigned MISC_CHECK_MS = 100; // between them

// What launching needs of its surroundings; every member may be null.
struct MiscHooks {
    void (*status)(const std::string &text); // a launch that failed
    void (*report)(const std::string &text); // the same where a line would not be enough
    void (*watch)(); // call misc_tick every MISC_CHECK_MS until it answers 0
};
extern MiscHooks gMiscHooks;

// Runs a command template. With a name for that one file; with null for the current entry when
// nothing is selected, else for all selected entries at once. 0 (also for a blank template), or -1
// when it refuses (a directory) or cannot be launched.
int file_cmd(const char *command, const char *file_name);

// out = the template with every marker replaced by the name; template, blank, name when it has
// none.
void misc_make_cmd(std::string &out, std::string_view command, std::string_view name, char marker);

// One step for several files: the name and "' '" go in before the first marker, which stays.
void misc_make_cmd2(std::string &out, std::string_view command, std::string_view name, char marker);

// Starts a command line without waiting; its pid, or -1. When the program turns out to want a
// terminal soon after, it is killed and started again in one, followed by extra there. The numbers
// do nothing.
pid_t misc_run(const std::string &command, int = 10, int = 111, int = 0,
               const char *extra = nullptr);

// Starts one file, given by its path, as a program.
pid_t misc_run_program(const std::string &path);

// Looks at the children started last; how many still have to be looked at.
int misc_tick();

// The shell text that starts a command line again in a terminal.
std::string misc_terminal_text(const std::string &command, const char *extra);

// Visits a directory and everything below, following no link inside it; parent_first says whether a
// directory comes before or after what it holds. A visit that answers -1 ends the walk. 0, or -1.
using MiscVisit = std::function<int(const std::string &path, const struct stat &info)>;
int misc_walktree(const char *path, const MiscVisit &visit, int parent_first);

// Creates what is missing of a path, mode 0755. -1 (with errno) when a part is no directory or
// fails.
int misc_mkpath(const char *path);

// Creates one directory, mode 0755, unless it is there. 0, or -1 with errno.
int misc_mkdir(const char *path);

bool misc_all_digits(const char *text); // an empty text too
void misc_trim(std::string &text);      // leading and trailing blanks go

} // namespace tav

// Launching: a command line becomes a child that is looked at for a moment. One that stops because
// it wants a terminal is killed and started again in one.
#include "commands/misc.h"
#include "commands/quote.h"
#include "commands/quote_scan.h"

#include "model/dir.h"
#include "platform/child.h"
#include "platform/namesake.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <sys/wait.h>
#include <unistd.h>

namespace tav {

MiscHooks gMiscHooks;

namespace {

volatile sig_atomic_t child_needs_tty_flag; // set by the handler, cleared before each launch

// A child that is still being looked at.
struct Watch {
    pid_t pid;
    std::string command; // as it was given
    std::string extra;
    int checks; // still to be made
    bool ended; // it has been collected
};
std::vector<Watch> sWatches;

void child_needs_tty(int) { child_needs_tty_flag = 1; }

void x_catch_terminal_signals()
{
    struct sigaction action = {};
    action.sa_handler = child_needs_tty;
    sigemptyset(&action.sa_mask);
    sigaction(SIGTTIN, &action, nullptr);
    sigaction(SIGTTOU, &action, nullptr);
}

void x_say(void (*hook)(const std::string &), const std::string &text)
{
    if (hook != nullptr)
        hook(text);
}

void x_say_failed(const std::string &program, int error)
{
    bool directory_gone = error == ENOENT && gDir.has_path && access(gDir.path.c_str(), X_OK) != 0;
    if (error == E2BIG)
        x_say(gMiscHooks.report, "The command line for '" + program + "' is too long.");
    else if (directory_gone)
        x_say(gMiscHooks.status, "Cannot run '" + program + "': the directory is gone");
    else if (error == ENOENT)
        x_say(gMiscHooks.status, "Cannot run '" + program + "': not found");
    else
        x_say(gMiscHooks.status, "Cannot run '" + program + "': " + std::strerror(error));
}

// What a shell was told to execute: the first word behind "exec"; empty where there is none.
std::string x_told_to_execute(const std::string &command)
{
    const std::vector<std::string> arguments = quote_split(command, 3);
    if (arguments.size() < 3 || arguments[0] != "sh" || !arguments[2].starts_with("exec "))
        return {};
    const std::vector<std::string> words = quote_split(arguments[2].substr(5), 1);
    return words.empty() ? "" : words[0];
}

bool x_can_execute(const std::string &program)
{
    const std::string file = child_find_program(program, nullptr);
    const bool relative = !file.empty() && file[0] != '/' && gDir.has_path;
    return child_is_program(relative ? gDir.path + "/" + file : file);
}

// The shell tells by these two statuses that it could not execute what it was given; a program that
// is there may end with them, too.
void x_child_ended(pid_t pid, int status)
{
    for (Watch &watch : sWatches) {
        if (watch.pid != pid)
            continue;
        watch.ended = true;
        const int code = WIFEXITED(status) ? WEXITSTATUS(status) : 0;
        if (code != 126 && code != 127)
            continue;
        const std::string program = x_told_to_execute(watch.command);
        if (!program.empty() && !x_can_execute(program))
            x_say_failed(program, code == 127 ? ENOENT : EACCES);
    }
}

// path: the PATH that it needs; empty: ours.
pid_t x_start(const std::string &program, std::vector<std::string> argv, const std::string &path)
{
    ChildStart start;
    start.program = program.c_str();
    start.argv = std::move(argv);
    start.set_env = {"PHIG=1"};
    if (gDir.has_path) {
        start.directory = gDir.path.c_str();
        start.set_env.push_back("PWD=" + gDir.path);
    }
    if (!path.empty())
        start.set_env.push_back("PATH=" + path);
    return child_start(start);
}

// Whether a further shell would make something else of a command line than its arguments.
bool x_needs_care(std::string command)
{
    if (command.find_first_of(std::string_view("\\`\0", 3)) != command.npos)
        return true;
    if (command.starts_with(QUOTE_WRAPPER))
        return command.find('$') != command.npos &&
               (!gDir.has_path || !quote_is_plain_word(gDir.path));
    std::erase(command, '"');
    return !quote_is_plain(command);
}

void x_restart_in_terminal(const Watch &watch)
{
    kill(-watch.pid, SIGKILL); // it leads a group, whose members have all been stopped
    std::string text = misc_terminal_text(watch.command, watch.extra.c_str());
    pid_t pid = x_start("/bin/sh", {"sh", "-c", text}, namesake_path("pterm"));
    if (pid < 0)
        x_say_failed("pterm", errno);
    else
        child_keep(pid, {});
}

// One look. True when the child need not be looked at any more.
bool x_check(Watch &watch)
{
    if (watch.ended)
        return true;
    bool newest = &watch == &sWatches.back(); // the handler cannot tell whose terminal it was
    if (child_wants_terminal(watch.pid) || (newest && child_needs_tty_flag)) {
        child_needs_tty_flag = 0;
        x_restart_in_terminal(watch);
        return true;
    }
    return --watch.checks <= 0;
}

void x_watch(pid_t pid, const std::string &command, const char *extra)
{
    child_keep(pid, x_child_ended);
    sWatches.push_back({pid, command, extra ? extra : "", MISC_CHECKS, false});
    if (x_check(sWatches.back()))
        sWatches.pop_back();
    else if (gMiscHooks.watch != nullptr)
        gMiscHooks.watch();
}

} // namespace

pid_t misc_run(const std::string &command, int, int, int, const char *extra)
{
    std::vector<std::string> argv = quote_split(command, MISC_ARGUMENTS);
    if (argv.empty())
        return -1;
    const std::string name = argv[0];
    const std::string told = x_told_to_execute(command);
    const std::string path = namesake_path(told.empty() ? name : told);
    const std::string program = child_find_program(name, path.empty() ? nullptr : path.c_str());
    if (program.empty()) {
        x_say_failed(name, errno);
        return -1;
    }
    child_needs_tty_flag = 0;
    x_catch_terminal_signals();
    pid_t pid = x_start(program, std::move(argv), path);
    if (pid < 0) {
        x_say_failed(name, errno);
        return -1;
    }
    x_watch(pid, command, extra);
    return pid;
}

pid_t misc_run_program(const std::string &path) { return misc_run(quote_argument(path)); }

int misc_tick()
{
    child_reap();
    sWatches.erase(std::remove_if(sWatches.begin(), sWatches.end(), x_check), sWatches.end());
    return static_cast<int>(sWatches.size());
}

std::string misc_terminal_text(const std::string &command, const char *extra)
{
    return "pterm " + quote_again(command, x_needs_care(command)) + " " + (extra ? extra : "") +
           " &";
}

} // namespace tav

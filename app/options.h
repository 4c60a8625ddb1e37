// The words of the command line: the standard window options, --help and --version. Knows no Qt.
#pragma once

#include <string>

namespace tav {

constexpr const char *OPTIONS_LETTERS = "s:x:y:h:w:S:";

// What the user asked of the first window. Lengths are the desktop's pixels.
struct Options {
    std::string server;        // display to connect to; empty: the environment's
    int x = -1, y = -1;        // position; meaningful when has_x, has_y
    int width = 0, height = 0; // 0: not given
    bool has_x = false, has_y = false;
    char state = 'n'; // 'i' iconified, 'm' maximised, 'n' normal
    bool help = false, version = false;
    std::string error; // what could not be understood, a line for standard error; else empty
};

// Reads the options; a value may stand in the same word or in the next ("-Sm", "-S m"). Words that
// are no options are left to whoever looks for the start directory, the toolkit's own ("-style") to
// the toolkit. Words that are not understood are told in error.
Options options_parse(int argc, const char *const *argv);

// The usage text for a program of that name.
std::string options_usage(const char *program);

// How to connect to Options::server.
struct OptionsDisplay {
    const char *variable; // of the environment: "DISPLAY", "WAYLAND_DISPLAY"; null: to none
    std::string value;    // ":4"
    const char *platform; // the toolkit's name for what is there: "xcb", "wayland"
};
OptionsDisplay options_display(const std::string &server);

} // namespace tav

// The words of the command line.
#include "app/options.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace tav {

namespace {

constexpr const char *sUsage = R"(%C - This is a QNX/Photon Application.
%C [options]
Options:
  -s server   Server node or device name
  -x x        Initial x position
  -y y        Initial y position
  -h h        Initial h dimension
  -w w        Initial w dimension
  -S i|m|n    Initial window state: i=iconified, m=maximized, n=normal
Examples:
%C -s4
  Run using Photon server on node 4
%C -s//4/dev/photon
  Same as above
%C -x10 -y10 -h200 -w300
  Run at initial position 10,10 with initial 
  dimension of 200x300.
)";

constexpr int sMaxLength = 32767; // what a window system takes

bool x_number(const char *text, int low, int &out)
{
    char *end = nullptr;
    errno = 0;
    const long value = std::strtol(text, &end, 10);
    if (end == text || *end != '\0' || errno != 0 || value < low || value > sMaxLength)
        return false;
    out = static_cast<int>(value);
    return true;
}

// Takes one option with its value; false when the value makes no sense.
bool x_take(Options &options, char letter, const char *value)
{
    switch (letter) {
    case 's':
        options.server = value;
        return true;
    case 'x':
        return options.has_x = x_number(value, -sMaxLength, options.x);
    case 'y':
        return options.has_y = x_number(value, -sMaxLength, options.y);
    case 'h':
        return x_number(value, 1, options.height);
    case 'w':
        return x_number(value, 1, options.width);
    default:
        if (std::strlen(value) != 1 || std::strchr("imn", *value) == nullptr)
            return false;
        options.state = *value;
        return true;
    }
}

// Words of the toolkit that begin like options of ours.
constexpr std::string_view sToolkitWords[] = {"-session", "-style", "-stylesheet", "-widgetcount"};

bool x_is_toolkit_word(std::string_view word)
{
    const std::string_view name = word.substr(0, word.find('='));
    return std::find(std::begin(sToolkitWords), std::end(sToolkitWords), name) !=
           std::end(sToolkitWords);
}

bool x_is_option(const char *word)
{
    const char letter = word[0] == '-' ? word[1] : '\0';
    return letter != ':' && letter != '\0' && std::strchr(OPTIONS_LETTERS, letter) != nullptr &&
           !x_is_toolkit_word(word);
}

} // namespace

Options options_parse(int argc, const char *const *argv)
{
    Options options;
    for (int i = 1; i < argc; ++i) {
        const char *word = argv[i];
        if (std::strcmp(word, "--help") == 0)
            options.help = true;
        else if (std::strcmp(word, "--version") == 0)
            options.version = true;
        if (!x_is_option(word))
            continue;
        const bool joined = word[2] != '\0';
        const char *value = joined ? word + 2 : i + 1 < argc ? argv[i + 1] : nullptr;
        if (value != nullptr && x_take(options, word[1], value)) {
            i += joined ? 0 : 1;
        } else if (options.error.empty()) {
            options.error = std::string("bad value for option -") + word[1];
        }
    }
    return options;
}

std::string options_usage(const char *program)
{
    std::string text = sUsage;
    for (size_t at = text.find("%C"); at != std::string::npos; at = text.find("%C", at)) {
        text.replace(at, 2, program);
        at += std::strlen(program);
    }
    return text;
}

OptionsDisplay options_display(const std::string &server)
{
    const bool digits = server.find_first_not_of("0123456789") == std::string::npos;
    if (server.empty() || server.find('/') != std::string::npos)
        return {nullptr, {}, nullptr};
    if (server.rfind("wayland", 0) == 0)
        return {"WAYLAND_DISPLAY", server, "wayland"};
    if (!digits && server.find(':') == std::string::npos)
        return {nullptr, {}, nullptr};
    return {"DISPLAY", digits ? ":" + server : server, "xcb"};
}

} // namespace tav

// What kind of file something is: the system's classifier, asked through a pipe, else the mode. A
// classifier that hangs or floods costs a worker's time, never the window's.
#include "commands/as.h"
#include "commands/pipe.h"
#include "commands/quote.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <poll.h>
#include <unistd.h>

namespace tav {

namespace {

constexpr size_t LINE_LIMIT = 2047; // bytes of the answer that count
// Nobody waits for the answer but a worker, so that a slow disk is given its time.
constexpr auto PATIENCE = std::chrono::seconds(60);

// How many milliseconds are left until then, at least 0.
int x_left(std::chrono::steady_clock::time_point then)
{
    auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
        then - std::chrono::steady_clock::now());
    return left.count() > 0 ? static_cast<int>(left.count()) : 0;
}

// Reads until a line is whole, the limit is reached, the other side is done or takes too long.
std::string x_read_line(FILE *stream)
{
    std::string line;
    auto then = std::chrono::steady_clock::now() + PATIENCE;
    while (line.size() < LINE_LIMIT && line.find('\n') == line.npos) {
        pollfd wait = {fileno(stream), POLLIN, 0};
        int ready = poll(&wait, 1, x_left(then));
        if (ready < 0 && errno == EINTR)
            continue;
        char bytes[LINE_LIMIT];
        ssize_t count = ready > 0 ? read(wait.fd, bytes, LINE_LIMIT - line.size()) : 0;
        if (count <= 0)
            break;
        line.append(bytes, static_cast<size_t>(count));
    }
    size_t end = line.find('\n');
    line.resize(end == line.npos ? line.size() : end + 1);
    line.resize(std::strlen(line.c_str())); // what follows a NUL is no text
    return line;
}

// What follows the name and its colon. The name may hold colons itself, and comes back with other
// bytes escaped, so that only the colons in it can be counted.
std::string x_description(const std::string &line, const std::string &name)
{
    size_t colon = line.find(':');
    if (colon == line.npos)
        return line;
    for (auto left = std::count(name.begin(), name.end(), ':'); left > 0; left--) {
        const size_t next = line.find(':', colon + 1);
        if (next == line.npos)
            break; // another line than expected
        colon = next;
    }
    return colon + 2 < line.size() ? line.substr(colon + 2) : std::string();
}

// Null when nothing fits.
const char *x_name_of_mode(mode_t mode)
{
    switch (mode & 0xF000) {
    case 0x1000:
        return "FIFO";
    case 0x2000:
        return "Special File";
    case 0x4000:
        return "Directory";
    case 0x6000:
        return "Block Special File";
    case 0xA000:
        return "Symbolic Link";
    case 0x5000:
        return "Special Named File";
    case 0xC000:
        return "Socket";
    default:
        break;
    }
    if (mode & 0x4000)
        return "QNX Special Type";
    if (mode & 0111)
        return "Executable";
    return (mode & 0xF000) == 0x8000 ? "Regular File" : nullptr;
}

} // namespace

int as_get_filetype(const char *path, mode_t mode, std::string &description)
{
    std::string name = path[0] == '-' ? "./" + std::string(path) : path;
    std::string line;
    if (FILE *stream = popen(("file -L " + quote_word(name)).c_str(), "r")) {
        line = x_read_line(stream);
        pipe_drop(stream);
    }
    if (!line.empty()) {
        description = x_description(line, name);
        return 1;
    }
    const char *kind = x_name_of_mode(mode);
    if (kind == nullptr)
        return 0;
    description = kind;
    return 1;
}

} // namespace tav

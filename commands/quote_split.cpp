// From a command line to the arguments of a program, and to text for a shell that passes the same
// arguments on.
#include "commands/quote.h"

#include <cstring>

namespace tav {

namespace {

bool x_is_blank(char byte) { return byte == ' ' || byte == '\t'; }

// Reads one argument from position on, which it moves behind it. Backslashes are kept; one protects
// only the quote that would end a quoted argument.
std::string x_take_argument(std::string_view command, size_t &position)
{
    std::string out;
    bool quoted = command[position] == '"';
    bool backslash = false;
    position += quoted ? 1 : 0;
    while (position < command.size()) {
        char byte = command[position++];
        if (byte == QUOTE_LITERAL && position < command.size()) {
            out += command[position++];
            backslash = false;
            continue;
        }
        if (quoted ? byte == '"' && !backslash : x_is_blank(byte))
            break;
        out += byte == QUOTE_MARK ? '"' : byte;
        backslash = byte == '\\';
    }
    return out;
}

// One byte of an argument inside the double quotes of a further shell text.
void x_put_quoted(std::string &out, char byte)
{
    if (std::strchr("\"$`\\", byte) != nullptr)
        out += '\\';
    out += byte;
}

} // namespace

std::vector<std::string> quote_split(std::string_view command, size_t limit)
{
    std::vector<std::string> arguments;
    size_t position = 0;
    while (arguments.size() < limit) {
        while (position < command.size() && x_is_blank(command[position]))
            position++;
        if (position >= command.size())
            break;
        arguments.push_back(x_take_argument(command, position));
    }
    return arguments;
}

std::string quote_again(std::string_view command, bool careful)
{
    std::string out;
    if (!careful) {
        for (char byte : command)
            out += byte == QUOTE_MARK ? std::string("\\\"") : std::string(1, byte);
        return out;
    }
    for (const std::string &argument : quote_split(command, SIZE_MAX)) {
        out += out.empty() ? "\"" : " \"";
        for (char byte : argument)
            x_put_quoted(out, byte);
        out += '"';
    }
    return out;
}

} // namespace tav

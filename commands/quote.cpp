// Building command lines: the wrapper, the marks around the placeholder, and each name escaped by
// the quoting that surrounds it.
#include "commands/quote.h"

#include "commands/quote_scan.h"

#include <cstdint>
#include <cstring>

namespace tav {

namespace {

bool x_is_alnum(char byte)
{
    return (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') ||
           (byte >= 'a' && byte <= 'z');
}

bool x_is_tail(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

// Bytes of the UTF-8 character at the front of text; 0 when it is none.
size_t x_utf8_length(std::string_view text)
{
    auto first = static_cast<unsigned char>(text[0]);
    size_t length = first < 0x80   ? 1
                    : first < 0xC2 ? 0
                    : first < 0xE0 ? 2
                    : first < 0xF0 ? 3
                    : first < 0xF5 ? 4
                                   : 0;
    if (length == 0 || text.size() < length)
        return 0;
    for (size_t i = 1; i < length; i++) {
        if (!x_is_tail(text[i]))
            return 0;
    }
    auto second = length > 2 ? static_cast<unsigned char>(text[1]) : 0x80;
    bool overlong = (first == 0xE0 && second < 0xA0) || (first == 0xF0 && second < 0x90);
    bool outside = (first == 0xED && second > 0x9F) || (first == 0xF4 && second > 0x8F);
    return overlong || outside ? 0 : length;
}

bool x_all_of(std::string_view text, std::string_view others)
{
    while (!text.empty()) {
        size_t length = x_utf8_length(text);
        bool good = length > 1 ||
                    (length == 1 && (x_is_alnum(text[0]) || others.find(text[0]) != others.npos));
        if (!good)
            return false;
        text.remove_prefix(length);
    }
    return true;
}

// The next unit of a command line: one byte, or a literal's two. Returns its length.
size_t x_unit(std::string_view command, size_t position)
{
    return command[position] == QUOTE_LITERAL && position + 1 < command.size() ? 2 : 1;
}

// One byte of a name between the shell's double quotes.
void x_put_double(std::string &out, char byte)
{
    if (std::strchr("\"$`\\", byte) != nullptr)
        out += '\\';
    out += byte == '"' ? QUOTE_MARK : byte;
}

// One byte of a name between the shell's single quotes, which only end and begin anew around a
// quote.
void x_put_single(std::string &out, char byte)
{
    if (byte == '\'')
        out += "'\\''";
    else
        out += byte == '"' ? QUOTE_MARK : byte;
}

void x_put(std::string &out, char byte, QuotePlace place)
{
    bool direct = place == QuotePlace::Direct || place == QuotePlace::DirectQuoted;
    if (byte == QUOTE_MARK || byte == '@' || (direct && std::strchr(" \t\"\\", byte) != nullptr)) {
        out += QUOTE_LITERAL;
        out += byte;
    } else if (direct) {
        out += byte;
    } else if (place == QuotePlace::Double) {
        x_put_double(out, byte);
    } else {
        x_put_single(out, byte);
    }
}

// What ends one argument and begins the next at a place.
std::string_view x_joint(QuotePlace place)
{
    static const char sDouble[] = {QUOTE_MARK, ' ', QUOTE_MARK};
    static const char sText[] = {'\\', QUOTE_MARK, ' ', '\\', QUOTE_MARK};
    switch (place) {
    case QuotePlace::Double:
    case QuotePlace::SingleText:
        return {sDouble, sizeof sDouble};
    case QuotePlace::DoubleText:
        return {sText, sizeof sText};
    case QuotePlace::Single:
        return "' '";
    case QuotePlace::DirectQuoted:
        return "\" \"";
    default:
        return " ";
    }
}

bool x_is_beside(std::string_view text, size_t position, char byte)
{
    return position < text.size() && text[position] == byte;
}

// The marks of ordinary names: none beside a single quote.
std::string x_mark_by_neighbours(std::string_view command)
{
    std::string out;
    for (size_t i = 0; i < command.size(); i++) {
        bool placed = command[i] == '@';
        if (placed && (i == 0 || command[i - 1] != '\''))
            out += QUOTE_MARK;
        out += command[i];
        if (placed && !x_is_beside(command, i + 1, '\''))
            out += QUOTE_MARK;
    }
    return out;
}

bool x_is_quote(std::string_view text, size_t position)
{
    return x_is_beside(text, position, '"') || x_is_beside(text, position, QUOTE_MARK);
}

// Whether the quotes around a position hold more than a word: maybe commands of a further shell.
bool x_is_text(std::string_view command, size_t position, size_t depth)
{
    QuoteScan scan(command);
    bool blank = false;
    for (size_t i = 0; i < command.size(); i++) {
        scan.feed(command[i]);
        if (i >= position && scan.depth() < depth)
            break;
        blank = scan.depth() >= depth && (blank || command[i] == ' ' || command[i] == '\n');
    }
    return blank;
}

// The kind of place at a marker that stands in the shell's quotes, by what is beside it.
QuotePlace x_place(const QuoteScan &scan, std::string_view command, size_t i)
{
    const QuotePlace place = scan.place();
    if (i == 0 || !x_is_quote(command, i - 1))
        return place;
    if (place == QuotePlace::Single)
        return QuotePlace::SingleText;
    if (place == QuotePlace::Double && x_is_beside(command, i - 2, '\\'))
        return QuotePlace::DoubleText;
    return place;
}

// What has to stand on both sides of the placeholder.
std::string x_mark_at(const QuoteScan &scan, std::string_view command, size_t i)
{
    const QuotePlace place = x_place(scan, command, i);
    if (place == QuotePlace::Bare)
        return {QUOTE_MARK};
    const bool quoted = i > 0 && (command[i - 1] == '\'' || x_is_quote(command, i - 1));
    const bool further = (place == QuotePlace::Single || place == QuotePlace::Double) && !quoted &&
                         x_is_text(command, i, scan.depth());
    if (!further)
        return {};
    return place == QuotePlace::Single ? std::string{QUOTE_MARK} : std::string{'\\', QUOTE_MARK};
}

// Marks by the quoting the placeholder stands in; where no shell takes single quotes away, they go.
std::string x_mark_by_quoting(std::string_view command)
{
    std::string out;
    QuoteScan scan(command);
    for (size_t i = 0; i < command.size(); i++) {
        const bool placed = command[i] == '@';
        const bool direct = placed && scan.place() == QuotePlace::Direct;
        const bool single = direct && out.ends_with('\'') && x_is_beside(command, i + 1, '\'');
        if (placed && !direct && scan.escaped())
            out += '\n'; // the backslash then takes this, and both are nothing
        if (single)
            out.pop_back();
        const std::string mark = placed ? x_mark_at(scan, command, i) : "";
        out += mark + command[i] + mark;
        scan.feed(command[i]);
        i += single ? 1 : 0;
    }
    return out;
}

// A name as it stands between double quotes of shell text.
std::string x_double(std::string_view name)
{
    std::string out;
    for (const char byte : name) {
        if (std::strchr("\"$`\\", byte) != nullptr)
            out += '\\';
        out += byte;
    }
    return out;
}

// Whether the word of a further shell's text begins at this marker.
bool x_begins_word(std::string_view command, size_t i)
{
    while (i > 0 && (x_is_quote(command, i - 1) || command[i - 1] == '\\'))
        i--;
    return i == 0 || std::strchr(" \t\n;&|()'", command[i - 1]) != nullptr;
}

} // namespace

bool quote_is_plain(std::string_view name)
{
    return x_all_of(name, " ._-+=:,%/~^") && !name.starts_with('-');
}

bool quote_is_plain_word(std::string_view text) { return x_all_of(text, "._-+=:,%/^"); }

std::string quote_wrap(std::string_view command)
{
    bool placed = command.find('@') != command.npos;
    if (placed && command.find(' ') == command.npos)
        return std::string(command);
    std::string out(QUOTE_WRAPPER);
    out += "exec ";
    for (size_t i = 0; i < command.size(); i++) {
        // The template's own quotes must not end the wrapper's argument.
        bool escaped = i > 0 && command[i - 1] == '\\';
        out += command[i] == '"' && !escaped ? QUOTE_MARK : command[i];
    }
    return out + (placed ? "\"" : " @\"");
}

bool quote_needs_care(std::string_view command)
{
    QuoteScan scan(command);
    for (size_t i = 0; i < command.size(); i++) {
        QuotePlace place = scan.place();
        bool care = place == QuotePlace::Double || place == QuotePlace::Direct ||
                    place == QuotePlace::DirectQuoted || (i > 0 && x_is_quote(command, i - 1));
        if (command[i] == '@' && care)
            return true;
        scan.feed(command[i]);
    }
    return false;
}

std::string quote_mark(std::string_view command, bool plain)
{
    return plain ? x_mark_by_neighbours(command) : x_mark_by_quoting(command);
}

std::string quote_pwd(std::string_view command)
{
    std::string out;
    QuoteScan scan(command);
    for (size_t i = 0; i < command.size();) {
        std::string_view rest = command.substr(i);
        size_t length = rest.starts_with("${PWD}") ? 6 : rest.starts_with("$PWD") ? 4 : 0;
        bool longer = length == 4 && rest.size() > 4 && (x_is_alnum(rest[4]) || rest[4] == '_');
        bool word = length > 0 && !longer && scan.place() == QuotePlace::Bare && !scan.escaped();
        if (word) {
            out += QUOTE_MARK;
            out += "$PWD";
            out += QUOTE_MARK;
            scan.feed('x');
            i += length;
        } else {
            out += command[i];
            scan.feed(command[i++]);
        }
    }
    return out;
}

std::string quote_name(std::string_view name, QuotePlace place, bool first)
{
    if (place == QuotePlace::Comment)
        return {}; // a newline would end the comment
    if (place == QuotePlace::SingleText || place == QuotePlace::DoubleText) {
        const std::string front = first && name.starts_with('-') ? "./" : "";
        const bool single = place == QuotePlace::SingleText;
        return quote_name(front + x_double(name), single ? QuotePlace::Single : QuotePlace::Double,
                          false);
    }
    std::string out;
    if (place == QuotePlace::Bare)
        out += '\'';
    if (first && name.starts_with('-'))
        out += "./";
    for (char byte : name)
        x_put(out, byte, place);
    if (place == QuotePlace::Bare)
        out += '\'';
    return out;
}

bool quote_fill(std::string &out, std::string_view command, const std::vector<std::string> &names,
                char marker)
{
    out.clear();
    QuoteScan scan(command);
    for (size_t i = 0; i < command.size();) {
        size_t unit = x_unit(command, i);
        if (unit == 2 || command[i] != marker) {
            out += command.substr(i, unit);
            scan.feed(unit == 1 ? command[i] : 'x');
            i += unit;
            continue;
        }
        const QuotePlace place = x_place(scan, command, i);
        const bool text = place == QuotePlace::SingleText || place == QuotePlace::DoubleText;
        const bool first = text ? x_begins_word(command, i) : scan.at_argument();
        for (size_t k = 0; k < names.size(); k++) {
            const bool plain = quote_is_plain(names[k]);
            if (place == QuotePlace::Unknown && !plain)
                return false;
            const bool as_is = plain && place != QuotePlace::Direct && place != QuotePlace::Bare;
            out += k > 0 ? x_joint(place) : "";
            out += as_is ? names[k] : quote_name(names[k], place, k > 0 || first);
        }
        scan.feed('x');
        i += unit;
    }
    return true;
}

size_t quote_find(std::string_view command, char marker)
{
    for (size_t i = 0; i < command.size(); i += x_unit(command, i)) {
        if (command[i] == marker)
            return i;
    }
    return command.npos;
}

std::string quote_argument(std::string_view bytes)
{
    return '"' + quote_name(bytes, QuotePlace::DirectQuoted, false) + '"';
}

std::string quote_word(std::string_view bytes)
{
    if (!bytes.empty() && quote_is_plain_word(bytes))
        return std::string(bytes);
    std::string out = "'";
    for (char byte : bytes) {
        if (byte == '\'')
            out += "'\\''";
        else
            out += byte;
    }
    return out + '\'';
}

} // namespace tav

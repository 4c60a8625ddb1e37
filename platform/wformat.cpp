// Formatting of messages. The format is walked here, conversion by conversion, because afterwards
// nobody could tell a line end that the message means from one that a file name brought along.
#include "platform/wformat.h"

#include "platform/shown.h"

#include <cstdint>
#include <cstdio>
#include <cstring>

// The conversions that are handed on one by one come from a format that the compiler has checked.
#pragma GCC diagnostic ignored "-Wformat-nonliteral"

namespace tav {
namespace {

struct Arguments {
    va_list list;
};

// A text in the making: kinds says for each byte whether the format (FORMAT) or an argument brought
// it.
struct Text {
    std::string bytes;
    std::string kinds;
};
constexpr char FORMAT = 'f';
constexpr char ARGUMENT = 'a';

void x_append(Text &text, const std::string &bytes, char kind)
{
    text.bytes += bytes;
    text.kinds.append(bytes.size(), kind);
}

template <typename T>
std::string x_print(const std::string &conversion, T value)
{
    const int length = snprintf(nullptr, 0, conversion.c_str(), value);
    std::string out(length > 0 ? static_cast<size_t>(length) + 1 : 1, '\0');
    snprintf(out.data(), out.size(), conversion.c_str(), value);
    out.pop_back();
    return out;
}

// Integers in the width that their length modifier names.
std::string x_print_integer(const std::string &conversion, Arguments &arguments)
{
    if (conversion.find("ll") != std::string::npos)
        return x_print(conversion, va_arg(arguments.list, long long));
    if (conversion.find_first_of("lzjt") != std::string::npos)
        return x_print(conversion, va_arg(arguments.list, long));
    return x_print(conversion, va_arg(arguments.list, int));
}

std::string x_print_argument(std::string conversion, Arguments &arguments)
{
    for (size_t star = conversion.find('*'); star != std::string::npos; star = conversion.find('*'))
        conversion.replace(star, 1, std::to_string(va_arg(arguments.list, int)));
    switch (conversion.back()) {
    case 's': {
        const char *text = va_arg(arguments.list, const char *);
        return x_print(conversion, text ? text : "(null)");
    }
    case 'p':
        return x_print(conversion, va_arg(arguments.list, void *));
    case 'e':
    case 'f':
    case 'g':
        return x_print(conversion, va_arg(arguments.list, double));
    default:
        return x_print_integer(conversion, arguments);
    }
}

Text x_expand(const char *format, Arguments &arguments)
{
    Text text;
    const bool bare = strcmp(format, "%s") == 0; // the whole text was made elsewhere
    while (*format) {
        const size_t literal = strcspn(format, "%");
        x_append(text, std::string(format, literal), FORMAT);
        format += literal;
        if (!*format)
            break;
        const size_t length = strcspn(format + 1, "%csdiouxXefgp") + 2;
        if (strlen(format) < length)
            break;
        const std::string conversion(format, length);
        format += length;
        if (conversion.back() == '%')
            x_append(text, "%", FORMAT);
        else
            x_append(text, x_print_argument(conversion, arguments), bare ? FORMAT : ARGUMENT);
    }
    return text;
}

// The largest length not above limit at which no character is cut in two. Bytes that are no UTF-8
// are cut anywhere.
size_t x_boundary(const std::string &text, size_t limit)
{
    if (text.size() <= limit)
        return text.size();
    size_t at = limit;
    while (at > limit - 3 && (text[at] & 0xC0) == 0x80)
        at--;
    return (text[at] & 0xC0) == 0x80 ? limit : at;
}

} // namespace

WFormatted wformat(const char *format, va_list list)
{
    Arguments arguments;
    va_copy(arguments.list, list);
    const Text text = x_expand(format, arguments);
    va_end(arguments.list);
    const size_t length = x_boundary(text.bytes, WFORMAT_LIMIT);
    QString shown;
    size_t begin = 0;
    for (size_t at = 0; at < length; at++) {
        if (text.bytes[at] != '\n' || text.kinds[at] != FORMAT)
            continue;
        shown +=
            shown_text(std::string_view(text.bytes).substr(begin, at - begin)) + QLatin1Char('\n');
        begin = at + 1;
    }
    shown += shown_text(std::string_view(text.bytes).substr(begin, length - begin));
    return {shown, length};
}

} // namespace tav

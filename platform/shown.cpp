// Bytes of names made into text that can be shown, and nothing else.
#include "platform/shown.h"

namespace tav {
namespace {

constexpr char32_t INVALID = 0xFFFFFFFF;

bool x_is_plain(std::string_view bytes)
{
    for (const char c : bytes) {
        if (c < 0x20 || c > 0x7E)
            return false;
    }
    return true;
}

// Characters that would be obeyed instead of seen: directions, line ends, and what has no width at
// all.
bool x_is_hidden(char32_t c)
{
    return (c >= 0x80 && c <= 0x9F) || c == 0xAD || c == 0x61C || c == 0x180E || c == 0x200B ||
           c == 0x200E || c == 0x200F || (c >= 0x2028 && c <= 0x202E) ||
           (c >= 0x2060 && c <= 0x206F) || c == 0xFEFF || (c >= 0xFFF9 && c <= 0xFFFB) ||
           (c >= 0xE0000 && c <= 0xE0FFF);
}

// The number of bytes that a sequence beginning with this byte takes; 0 for none.
int x_sequence_length(unsigned char first)
{
    if (first < 0x80)
        return 1;
    if (first >= 0xC2 && first <= 0xDF)
        return 2;
    if (first >= 0xE0 && first <= 0xEF)
        return 3;
    return first >= 0xF0 && first <= 0xF4 ? 4 : 0;
}

// Reads one character and moves on behind it; for a byte that begins none, INVALID and one byte.
char32_t x_decode(std::string_view bytes, size_t &at)
{
    static constexpr char32_t SMALLEST[] = {0, 0, 0x80, 0x800, 0x10000};
    const auto first = static_cast<unsigned char>(bytes[at++]);
    const int length = x_sequence_length(first);
    if (length == 1)
        return first;
    if (length == 0 || at + static_cast<size_t>(length) - 1 > bytes.size())
        return INVALID;
    char32_t c = first & (0xFFU >> (length + 1));
    for (int i = 0; i < length - 1; i++) {
        const auto next = static_cast<unsigned char>(bytes[at + static_cast<size_t>(i)]);
        if ((next & 0xC0) != 0x80)
            return INVALID;
        c = (c << 6) | (next & 0x3F);
    }
    if (c < SMALLEST[length] || c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF))
        return INVALID;
    at += static_cast<size_t>(length) - 1;
    return c;
}

void x_append(QString &text, char32_t c, unsigned char byte)
{
    if (c == INVALID)
        text += QString::asprintf("\\x%02X", byte);
    else if (c < 0x20)
        text += QChar(static_cast<char16_t>(0x2400 + c));
    else if (c == 0x7F)
        text += QChar(u'\u2421');
    else if (x_is_hidden(c))
        text += QString::asprintf("\\u%04X", static_cast<unsigned>(c));
    else
        text += QString::fromUcs4(&c, 1);
}

} // namespace

QString shown_text(std::string_view bytes)
{
    if (x_is_plain(bytes))
        return QString::fromLatin1(bytes.data(), static_cast<qsizetype>(bytes.size()));
    QString text;
    text.reserve(static_cast<qsizetype>(bytes.size()) + 8);
    for (size_t at = 0; at < bytes.size();) {
        const auto byte = static_cast<unsigned char>(bytes[at]);
        x_append(text, x_decode(bytes, at), byte);
    }
    return text;
}

QString shown_label(std::string_view bytes)
{
    return shown_text(bytes).replace(QLatin1Char('&'), QLatin1String("&&"));
}

} // namespace tav

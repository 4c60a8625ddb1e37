// Bytes of names made into text that can be shown, and nothing else.
#include "platform/shown.h"

#include <vector>

namespace tav {
namespace {

constexpr char32_t INVALID = 0xFFFFFFFF;
constexpr qsizetype EDITED_MOST = 4096; // characters of a text that may still be a name

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

// A character of a name, or a byte that is none, and how it is shown.
struct Piece {
    std::string_view bytes;
    QString shown;
};

std::vector<Piece> x_pieces(std::string_view bytes)
{
    std::vector<Piece> pieces;
    for (size_t at = 0; at < bytes.size();) {
        const size_t begin = at;
        const auto byte = static_cast<unsigned char>(bytes[at]);
        const char32_t c = x_decode(bytes, at);
        pieces.push_back({bytes.substr(begin, at - begin), {}});
        x_append(pieces.back().shown, c, byte);
    }
    return pieces;
}

// How many characters of a text can be pieces of the name, in their order, counted from piece i and
// character j on.
class Kept {
public:
    Kept(const std::vector<Piece> &pieces, QStringView text)
        : m_pieces(pieces), m_text(text), m_width(text.size() + 1),
          m_counts((pieces.size() + 1) * static_cast<size_t>(m_width))
    {
        for (size_t i = pieces.size(); i-- > 0;)
            for (qsizetype j = text.size(); j-- > 0;)
                at(i, j) = std::max({at(i + 1, j), at(i, j + 1), with(i, j)});
    }

    // Whether the piece stands at that character, nothing being lost by taking it for itself.
    bool is_here(size_t i, qsizetype j) { return with(i, j) > 0 && with(i, j) == at(i, j); }
    // Whether the character is new, nothing being lost by leaving it out.
    bool is_new(size_t i, qsizetype j) { return at(i, j) == at(i, j + 1); }

private:
    int &at(size_t i, qsizetype j)
    {
        return m_counts[i * static_cast<size_t>(m_width) + static_cast<size_t>(j)];
    }
    int with(size_t i, qsizetype j)
    {
        const QString &shown = m_pieces[i].shown;
        const auto length = static_cast<int>(shown.size());
        return m_text.mid(j).startsWith(shown) ? length + at(i + 1, j + length) : 0;
    }

    const std::vector<Piece> &m_pieces;
    QStringView m_text;
    qsizetype m_width; // of a row of m_counts
    std::vector<int> m_counts;
};

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

std::string shown_edited(std::string_view before, const QString &text)
{
    if (text.size() > EDITED_MOST || shown_text(before).toStdString() == before)
        return text.toStdString();
    const std::vector<Piece> pieces = x_pieces(before);
    Kept kept(pieces, text);
    std::string bytes;
    QString typed; // since the last piece
    size_t i = 0;
    for (qsizetype j = 0; j < text.size();) {
        if (i == pieces.size() || (!kept.is_here(i, j) && kept.is_new(i, j))) {
            typed += text[j++];
        } else if (kept.is_here(i, j)) {
            bytes.append(typed.toStdString()).append(pieces[i].bytes);
            typed.clear();
            j += pieces[i++].shown.size();
        } else {
            i++;
        }
    }
    return bytes + typed.toStdString();
}

QString shown_label(std::string_view bytes)
{
    return shown_text(bytes).replace(QLatin1Char('&'), QLatin1String("&&"));
}

} // namespace tav

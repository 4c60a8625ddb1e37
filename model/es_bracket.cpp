// Brackets of name patterns: "[abc]", "[!a-z]", "[[:alpha:]_]", "[[.-.]]", "[[=a=]]".
//
// Brackets that nobody would write on purpose have answers too, and a pattern that is typed letter
// by letter passes through them: what is taken for a class, where an open bracket ends, and that
// this depends on whether the character was found before the trouble begins. The answers are those
// of the C library, which the tests compare these with.
#include "model/es_bracket.h"

#include <climits>
#include <cwchar>
#include <cwctype>
#include <fnmatch.h>
#include <string>

namespace tav {

namespace {

constexpr int CLASS_NAME_LIMIT = 256; // characters of a class name

// Where reading an element of a bracket has come to.
enum class Read {
    on,      // the character is not in the element; p stands behind it
    found,   // the character is in it
    failed,  // nothing can match this bracket
    unclosed // the pattern ends here
};

template <typename Char>
wint_t x_wide(Char c)
{
    if constexpr (sizeof(Char) == 1)
        return btowc(c);
    else
        return static_cast<wint_t>(c);
}

template <typename Char>
void x_append(std::string &text, Char c)
{
    if constexpr (sizeof(Char) == 1) {
        text += static_cast<char>(c);
    } else {
        char bytes[MB_LEN_MAX];
        mbstate_t state = {};
        size_t made = wcrtomb(bytes, c, &state);
        if (made != static_cast<size_t>(-1))
            text.append(bytes, made);
    }
}

// Which characters lie between two others is the C library's to say, beyond ASCII. It would also
// take the bytes of a character one by one; a whole character before them keeps it from doing so.
template <typename Char>
bool x_in_range(Char low, Char high, Char c)
{
    if (low < 0x80 && high < 0x80 && c < 0x80)
        return low <= c && c <= high;
    std::string pattern = low < 0x80 ? "?[\\" : "?[";
    x_append(pattern, low);
    pattern += high < 0x80 ? "-\\" : "-";
    x_append(pattern, high);
    pattern += ']';
    std::string text;
    x_append(text, c >= 0x80 ? c : high >= 0x80 ? high : low);
    x_append(text, c);
    return fnmatch(pattern.c_str(), text.c_str(), 0) == 0;
}

// Whether the C library knows where c stands among others.
template <typename Char>
bool x_has_order(Char c)
{
    return c < 0x80 || x_in_range(c, c, c);
}

// How "[:" goes on; p stands at the ":". Puts the place behind ":]" in *end and the name in *name.
enum class Class { named, too_long, plain };
template <typename Char>
Class x_class_name(const Char *p, const Char **end, std::string *name)
{
    for (int length = 0;; length++) {
        if (length == CLASS_NAME_LIMIT)
            return Class::too_long;
        Char c = *++p;
        if (c == ':' && p[1] == ']') {
            *end = p + 2;
            return Class::named;
        }
        if (c < 'a' || c >= 'z') {
            *end = p;
            return Class::plain;
        }
        if (name)
            *name += static_cast<char>(c);
    }
}

// Behind one plain character, *p: a range when "-" and an end follow. low is the plain character.
template <typename Char>
Read x_plain(const Char **p, Char low, bool may_be_range, Char c)
{
    if (!may_be_range && low == c)
        return Read::found;
    if (**p != '-' || (*p)[1] == ']')
        return Read::on;
    Char high = *++*p;
    ++*p;
    if (high && !x_has_order(c))
        return Read::on; // as the library, which does not look then at what the end may mean
    if (high == '[' && **p == '.') {
        const Char *symbol = *p + 1;
        if (!*symbol || symbol[1] != '.' || symbol[2] != ']')
            return Read::failed;
        high = *symbol;
        *p = symbol + 3;
    } else if (high == '\\') {
        high = *(*p)++;
    }
    if (!high)
        return Read::failed;
    return x_in_range(low, high, c) ? Read::found : Read::on;
}

template <typename Char>
Read x_plain_here(const Char **p, Char low, Char c)
{
    return x_plain(p, low, **p == '-' && (*p)[1] != 0 && (*p)[1] != ']', c);
}

template <typename Char>
Read x_named_class(const Char **p, Char c)
{
    std::string name;
    const Char *end = nullptr;
    switch (x_class_name(*p, &end, &name)) {
    case Class::too_long:
        return Read::failed;
    case Class::plain:
        return x_plain_here(p, static_cast<Char>('['), c);
    case Class::named:
        break;
    }
    *p = end;
    wctype_t type = wctype(name.c_str());
    if (!type)
        return Read::failed;
    return iswctype(x_wide(c), type) ? Read::found : Read::on;
}

// "[=x=]": where there are no collation tables, x alone.
template <typename Char>
Read x_equivalence(const Char **p, Char c)
{
    const Char *at = *p + 1;
    if (!*at || at[1] != '=' || at[2] != ']')
        return x_plain_here(p, static_cast<Char>('['), c);
    *p = at + 3;
    return *at == c ? Read::found : Read::on;
}

// "[.x.]": where there are no collation tables, x alone, which may begin a range.
template <typename Char>
Read x_symbol(const Char **p, Char c)
{
    const Char *at = *p + 1;
    const Char *end = at;
    while (!(*end == '.' && end[1] == ']')) {
        if (!*end)
            return Read::failed;
        end++;
    }
    *p = end + 2;
    if (end - at != 1)
        return Read::failed;
    return x_plain(p, *at, **p == '-' && (*p)[1] != 0, c);
}

// Reads the element at *p and leaves *p behind it.
template <typename Char>
Read x_element(const Char **p, Char c)
{
    Char first = *(*p)++;
    if (!first)
        return Read::unclosed;
    if (first == '\\') {
        if (!**p)
            return Read::failed;
        Char low = *(*p)++;
        return x_plain_here(p, low, c);
    }
    if (first == '[' && **p == ':')
        return x_named_class(p, c);
    if (first == '[' && **p == '=')
        return x_equivalence(p, c);
    if (first == '[' && **p == '.')
        return x_symbol(p, c);
    return x_plain_here(p, first, c);
}

// The end of the inner bracket that "[" and *p begin, p itself when it is none, null when it spoils
// all.
template <typename Char>
const Char *x_skip_inner(const Char *p)
{
    const Char *end = nullptr;
    switch (*p) {
    case ':':
        switch (x_class_name<Char>(p, &end, nullptr)) {
        case Class::too_long:
            return nullptr;
        case Class::named:
            return end;
        case Class::plain:
            return p;
        }
        return p;
    case '=':
        return p[1] && p[2] == '=' && p[3] == ']' ? p + 4 : nullptr;
    case '.':
        for (p++; !(*p == '.' && p[1] == ']'); p++)
            if (!*p)
                return nullptr;
        return p + 2;
    default:
        return p;
    }
}

// The place behind the "]" that ends the bracket, once the character was found; null when there is
// none.
template <typename Char>
const Char *x_skip_rest(const Char *p)
{
    for (;;) {
        Char c = *p++;
        if (!c)
            return EsBracket<Char>::literal();
        if (c == ']')
            return p;
        if (c == '\\') {
            if (!*p)
                return nullptr;
            p++;
        } else if (c == '[') {
            p = x_skip_inner(p);
            if (!p)
                return nullptr;
        }
    }
}

template <typename Char>
const Char *x_bracket(const Char *p, Char c)
{
    p++;
    bool inverted = *p == '!' || *p == '^';
    if (inverted)
        p++;
    do {
        switch (x_element(&p, c)) {
        case Read::on:
            break;
        case Read::found:
            p = x_skip_rest(p);
            return inverted && p != EsBracket<Char>::literal() ? nullptr : p;
        case Read::failed:
            return nullptr;
        case Read::unclosed:
            return EsBracket<Char>::literal();
        }
    } while (*p != ']');
    return inverted ? p + 1 : nullptr;
}

} // namespace

const unsigned char *es_bracket(const unsigned char *p, unsigned char c) { return x_bracket(p, c); }
const wchar_t *es_bracket(const wchar_t *p, wchar_t c) { return x_bracket(p, c); }

} // namespace tav

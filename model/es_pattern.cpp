// Name patterns: alternatives between "|", each matched as fnmatch does without flags, but in time
// that never grows beyond pattern times name, and over many names without preparing the pattern
// again.
//
// A "*" needs no trying of every way: once the part up to the next "*" has matched at its first
// possible place, an earlier "*" can gain nothing by taking more. So the matcher keeps one place to
// go back to.
//
// Names are compared as characters of LC_CTYPE; when the name or the alternative is no valid text,
// byte by byte. Where both are plain ASCII the two are the same and bytes are taken.
#include "model/es.h"

#include "model/es_bracket.h"

#include <climits>
#include <cstring>
#include <cwchar>
#include <cwctype>
#include <string_view>

namespace tav {

namespace {

bool x_is_ascii(const char *text, size_t size)
{
    unsigned char all = 0;
    for (size_t i = 0; i < size; i++)
        all |= static_cast<unsigned char>(text[i]);
    return all < 0x80;
}

// The bytes as characters. False when they are no valid text, or where characters are bytes anyway.
bool x_widen(std::wstring &wide, const char *bytes, size_t size)
{
    if (MB_CUR_MAX == 1)
        return false;
    wide.resize(size + 1);
    mbstate_t state = {};
    const char *from = bytes;
    size_t count = mbsrtowcs(wide.data(), &from, size + 1, &state);
    if (count == static_cast<size_t>(-1)) {
        wide.clear();
        return false;
    }
    wide.resize(count);
    return true;
}

// Lower case per character; bytes that are no text stay as they are.
std::string x_lower(std::string_view text)
{
    std::string lower;
    lower.reserve(text.size());
    mbstate_t state = {};
    for (size_t i = 0; i < text.size();) {
        wchar_t c = 0;
        char bytes[MB_LEN_MAX];
        size_t used = mbrtowc(&c, text.data() + i, text.size() - i, &state);
        if (used == 0 || used > text.size() - i) {
            state = {};
            lower += text[i++];
            continue;
        }
        mbstate_t out = {};
        size_t made = wcrtomb(bytes, static_cast<wchar_t>(towlower(static_cast<wint_t>(c))), &out);
        if (made == static_cast<size_t>(-1))
            lower.append(text, i, used);
        else
            lower.append(bytes, made);
        i += used;
    }
    return lower;
}

// Matches one character at *p, which is no "*" and no end. The place behind it, or null for no
// match.
template <typename Char>
const Char *x_one(const Char *p, Char c)
{
    switch (*p) {
    case '?':
        return p + 1;
    case '\\':
        return p[1] != 0 && p[1] == c ? p + 2 : nullptr;
    case '[': {
        const Char *next = es_bracket(p, c);
        return next != EsBracket<Char>::literal() ? next : c == '[' ? p + 1 : nullptr;
    }
    default:
        return *p == c ? p + 1 : nullptr;
    }
}

template <typename Char>
bool x_match(const Char *p, const Char *n)
{
    const Char *star = nullptr; // behind the last "*"
    const Char *back = nullptr; // where that "*" next ends in the name
    while (*n) {
        if (*p == '*') {
            do
                p++;
            while (*p == '*');
            if (!*p)
                return true;
            star = p;
            back = n;
            continue;
        }
        if (const Char *next = *p ? x_one(p, *n) : nullptr) {
            p = next;
            n++;
        } else if (star) {
            p = star;
            n = ++back;
        } else {
            return false;
        }
    }
    while (*p == '*')
        p++;
    return !*p;
}

bool x_match_bytes(const char *pattern, const char *name)
{
    return x_match(reinterpret_cast<const unsigned char *>(pattern),
                   reinterpret_cast<const unsigned char *>(name));
}

EsPattern::Alternative x_alternative(std::string_view text)
{
    EsPattern::Alternative one;
    one.bytes = text;
    one.ascii = x_is_ascii(text.data(), text.size());
    one.is_text = x_widen(one.wide, one.bytes.c_str(), one.bytes.size());
    one.any = !text.empty() && text.find_first_not_of('*') == text.npos;
    return one;
}

// The name in its forms, each made when it is first needed.
class Name {
public:
    explicit Name(const char *bytes)
        : m_bytes(bytes), m_size(strlen(bytes)), m_ascii(x_is_ascii(bytes, m_size))
    {}
    bool matches(const EsPattern::Alternative &one)
    {
        if (!(m_ascii && one.ascii) && one.is_text && is_text() &&
            x_match(one.wide.c_str(), m_wide.c_str()))
            return true;
        return x_match_bytes(one.bytes.c_str(), m_bytes);
    }

private:
    bool is_text()
    {
        if (!m_tried)
            m_text = x_widen(m_wide, m_bytes, m_size);
        m_tried = true;
        return m_text;
    }

    const char *m_bytes;
    size_t m_size;
    bool m_ascii;
    bool m_tried = false;
    bool m_text = false;
    std::wstring m_wide;
};

} // namespace

namespace {

void x_fill_lower(EsPattern &ready)
{
    for (wint_t c = 0; c < sizeof ready.lower; c++) {
        wint_t lower = towlower(c);
        ready.lower[c] = static_cast<char>(lower < sizeof ready.lower ? lower : 0);
    }
}

// Lower-cases a name whose characters, and their lower case, are all ASCII. False for any other,
// and for one that does not fit.
template <size_t Size>
bool x_lower_ascii(const EsPattern &ready, const char *name, char (&lower)[Size])
{
    for (size_t i = 0; i < Size; i++) {
        auto c = static_cast<unsigned char>(name[i]);
        if (c == 0) {
            lower[i] = 0;
            return true;
        }
        lower[i] = c < sizeof ready.lower ? ready.lower[c] : '\0';
        if (lower[i] == 0)
            return false;
    }
    return false;
}

bool x_matches(const EsPattern &pattern, const char *name)
{
    Name forms(name);
    for (const EsPattern::Alternative &one : pattern.alternatives)
        if (forms.matches(one))
            return true;
    return false;
}

} // namespace

EsPattern es_pattern_prepare(const char *pattern)
{
    EsPattern ready = {};
    x_fill_lower(ready);
    std::string_view rest = pattern ? pattern : "";
    ready.fold = rest.starts_with('^');
    std::string lower;
    if (ready.fold) {
        lower = x_lower(rest.substr(1));
        rest = lower;
    }
    for (;;) {
        size_t bar = rest.find('|');
        ready.alternatives.push_back(x_alternative(rest.substr(0, bar)));
        ready.any = ready.any || ready.alternatives.back().any;
        if (bar == rest.npos)
            break;
        rest.remove_prefix(bar + 1);
    }
    return ready;
}

bool es_pattern_matches(const EsPattern &pattern, const char *name)
{
    if (pattern.any)
        return true;
    if (!pattern.fold)
        return x_matches(pattern, name);
    char lower[256];
    if (x_lower_ascii(pattern, name, lower))
        return x_matches(pattern, lower);
    return x_matches(pattern, x_lower(name).c_str());
}

int es_strcmp(const char *name, const char *pattern)
{
    return es_pattern_matches(es_pattern_prepare(pattern), name ? name : "") ? 0 : 1;
}

} // namespace tav

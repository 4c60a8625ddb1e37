// The simple alternatives are compared as bytes; what is left, and every name in which a letter
// beyond ASCII could have an ASCII one as its other case, is matched as a pattern.
#include "commands/as_match.h"

#include <algorithm>

namespace tav {

namespace {

char x_lower(char byte) { return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte + 32) : byte; }

bool x_equal(std::string_view a, std::string_view b, bool fold)
{
    if (!fold)
        return a == b;
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return x_lower(x) == x_lower(y); });
}

bool x_ends(std::string_view name, std::string_view ending, bool fold)
{
    return name.size() >= ending.size() &&
           x_equal(name.substr(name.size() - ending.size()), ending, fold);
}

bool x_is_ascii(std::string_view text)
{
    return std::all_of(text.begin(), text.end(), [](char byte) { return byte >= 0; });
}

void x_add(AsMatch &match, std::string_view alternative)
{
    bool star = alternative.starts_with('*');
    std::string_view text = alternative.substr(star ? 1 : 0);
    if (text.find_first_of("*?[\\") != text.npos || !x_is_ascii(text))
        match.simple = false;
    else
        (star ? match.endings : match.names).emplace_back(text);
}

} // namespace

AsMatch as_match_make(std::string_view pattern)
{
    AsMatch match;
    match.pattern = es_pattern_prepare(std::string(pattern).c_str());
    match.fold = pattern.starts_with('^');
    if (match.fold)
        pattern.remove_prefix(1);
    for (;;) {
        size_t end = pattern.find('|');
        x_add(match, pattern.substr(0, end));
        if (end == pattern.npos)
            return match;
        pattern.remove_prefix(end + 1);
    }
}

bool as_match(const AsMatch &match, const char *name)
{
    std::string_view text = name;
    if (!x_is_ascii(text))
        return es_pattern_matches(match.pattern, name);
    for (const std::string &ending : match.endings) {
        if (x_ends(text, ending, match.fold))
            return true;
    }
    for (const std::string &whole : match.names) {
        if (x_equal(text, whole, match.fold))
            return true;
    }
    return !match.simple && es_pattern_matches(match.pattern, name);
}

} // namespace tav

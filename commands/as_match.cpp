// Most patterns are a star and an ending, or a plain name; those need no wildcard matching.
// Everything else, and every name in which letters beyond ASCII could change their length with
// their case, goes to es_strcmp.
#include "commands/as_match.h"

#include "model/es.h"

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

bool x_is_ascii(std::string_view text)
{
    return std::all_of(text.begin(), text.end(), [](char byte) { return byte >= 0; });
}

AsAlternative x_alternative(std::string_view text, bool fold)
{
    bool star = text.starts_with('*');
    std::string_view literal = text.substr(star ? 1 : 0);
    bool simple = literal.find_first_of("*?[\\") == literal.npos && x_is_ascii(literal);
    if (simple)
        return {star ? AsAlternative::Suffix : AsAlternative::Exact, std::string(literal)};
    return {AsAlternative::General, (fold ? "^" : "") + std::string(text)};
}

} // namespace

AsMatch as_match_make(std::string_view pattern)
{
    AsMatch match;
    match.fold = pattern.starts_with('^');
    if (match.fold)
        pattern.remove_prefix(1);
    for (;;) {
        size_t end = pattern.find('|');
        match.alternatives.push_back(x_alternative(pattern.substr(0, end), match.fold));
        if (end == pattern.npos)
            return match;
        pattern.remove_prefix(end + 1);
    }
}

bool as_match(const AsMatch &match, std::string_view name)
{
    bool simple_name = x_is_ascii(name);
    std::string text;
    for (const AsAlternative &alternative : match.alternatives) {
        std::string_view wanted = alternative.text;
        std::string pattern;
        if (alternative.kind == AsAlternative::General) {
            pattern = alternative.text;
        } else if (simple_name) {
            std::string_view end = name;
            if (alternative.kind == AsAlternative::Suffix && name.size() > wanted.size())
                end = name.substr(name.size() - wanted.size());
            if (end.size() == wanted.size() && x_equal(end, wanted, match.fold))
                return true;
            continue;
        } else {
            pattern = (match.fold ? "^" : "");
            pattern += alternative.kind == AsAlternative::Suffix ? "*" : "";
            pattern += wanted;
        }
        if (text.empty())
            text = name;
        if (es_strcmp(text.c_str(), pattern.c_str()) == 0)
            return true;
    }
    return false;
}

} // namespace tav

// Plain ini texts.
#include "platform/ini.h"

#include <algorithm>

namespace tav {

namespace {

std::string_view trimmed(std::string_view text)
{
    const char *blanks = " \t\r";
    const size_t begin = text.find_first_not_of(blanks);
    if (begin == text.npos)
        return {};
    return text.substr(begin, text.find_last_not_of(blanks) - begin + 1);
}

// Where a key stands in a text, or where its line would go.
struct Place {
    size_t line = std::string_view::npos;        // begin of the key's line; npos: there is none
    size_t line_end = 0;                         // its end, without the newline
    size_t section_end = std::string_view::npos; // behind the section's last filled line
};

Place find(std::string_view text, std::string_view section, std::string_view key)
{
    Place place;
    bool inside = false;
    for (size_t begin = 0; begin < text.size();) {
        const size_t end = std::min(text.find('\n', begin), text.size());
        const std::string_view line = trimmed(text.substr(begin, end - begin));
        if (line.starts_with('['))
            inside = line.size() == section.size() + 2 && line.substr(1, section.size()) == section;
        if (inside && !line.empty())
            place.section_end = std::min(end + 1, text.size());
        const size_t equals = line.find('=');
        if (inside && equals != line.npos && trimmed(line.substr(0, equals)) == key) {
            place.line = begin;
            place.line_end = end;
            return place;
        }
        begin = end + 1;
    }
    return place;
}

} // namespace

std::optional<std::string> ini_get(std::string_view text, std::string_view section,
                                   std::string_view key)
{
    const Place place = find(text, section, key);
    if (place.line == std::string_view::npos)
        return std::nullopt;
    const std::string_view line = text.substr(place.line, place.line_end - place.line);
    return std::string(trimmed(line.substr(line.find('=') + 1)));
}

void ini_set(std::string &text, std::string_view section, std::string_view key,
             std::string_view value)
{
    const std::string line = std::string(key) + '=' + std::string(value);
    const Place place = find(text, section, key);
    if (place.line != std::string_view::npos) {
        text.replace(place.line, place.line_end - place.line, line);
        return;
    }
    if (!text.empty() && text.back() != '\n')
        text += '\n';
    if (place.section_end != std::string_view::npos) {
        const size_t at = place.section_end + (text[place.section_end - 1] != '\n' ? 1 : 0);
        text.insert(at, line + '\n');
        return;
    }
    if (!text.empty())
        text += '\n';
    text += '[' + std::string(section) + "]\n" + line + '\n';
}

} // namespace tav

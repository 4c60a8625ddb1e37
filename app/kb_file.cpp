// Key bindings: their text file.
#include "app/ac.h"
#include "app/kb.h"
#include "platform/replace_file.h"

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string_view>

namespace tav {

namespace {

constexpr size_t PIECE_SIZE = 31;               // characters of a line that are read at once
constexpr size_t FILE_LIMIT = size_t(64) << 20; // bytes of a file that is believed to hold bindings

// dir, a "/" where one is missing, and name; nothing when both are null.
std::optional<std::string> path_of(const char *dir, const char *name)
{
    if (!dir && !name)
        return std::nullopt;
    std::string path(dir ? dir : "");
    if (dir && !path.ends_with('/'))
        path += '/';
    return path += name ? name : "";
}

// Cuts the next word off text, as strtok does: skips delimiters, then takes what stands before the
// next.
std::string next_word(std::string_view &text, const char *delimiters)
{
    size_t begin = text.find_first_not_of(delimiters);
    if (begin == text.npos)
        begin = text.size();
    const size_t end = std::min(text.find_first_of(delimiters, begin), text.size());
    std::string word(text.substr(begin, end - begin));
    text.remove_prefix(std::min(end + 1, text.size()));
    return word;
}

uint32_t number_of(const std::string &word)
{
    return static_cast<uint32_t>(strtoul(word.c_str(), nullptr, 10));
}

// Binds what one piece of a line says.
void load_piece(std::string_view piece, std::optional<std::string> &section)
{
    piece = piece.substr(0, piece.find('\0'));
    if (piece.starts_with('['))
        section = next_word(piece, "[]'\n");
    if (!piece.starts_with('\'') || !section)
        return;
    const std::string action = next_word(piece, "[]'\n");
    const std::string mods = next_word(piece, " \n");
    const std::string cap = next_word(piece, " \n");
    if (!action.empty() && !mods.empty() && !cap.empty()) // else a name was cut in two
        kb_attach(action.c_str(), section->c_str(), number_of(mods), number_of(cap));
}

void save_cap(std::string &text, const KbCap &cap)
{
    text += '\'' + cap.action->name + "' " + std::to_string(cap.mod->mods) + ' ' +
            std::to_string(cap.cap) + '\n';
}

// The action's keys in the section: the first default, then all others in the order of the lists.
void save_action(std::string &text, const KbSection &section, const AcAction &action)
{
    const KbCap *first = nullptr;
    for (const KbMod &mod : section.mods)
        for (const KbCap &cap : mod.caps)
            if (!first && cap.action == &action && (cap.flags & KB_DEFAULT))
                first = &cap;
    if (first)
        save_cap(text, *first);
    for (const KbMod &mod : section.mods)
        for (const KbCap &cap : mod.caps)
            if (cap.action == &action && &cap != first)
                save_cap(text, cap);
}

} // namespace

int kb_load(const char *dir, const char *name)
{
    const auto path = path_of(dir, name);
    std::string content;
    if (!path || replace_file_read(path->c_str(), content, FILE_LIMIT) < 0)
        return -1;
    std::optional<std::string> section;
    std::string_view rest(content);
    while (!rest.empty()) {
        const size_t line = std::min(rest.find('\n'), rest.size() - 1) + 1;
        const size_t size = std::min(line, PIECE_SIZE);
        load_piece(rest.substr(0, size), section);
        rest.remove_prefix(size);
    }
    return 0;
}

int kb_save(const char *dir, const char *name)
{
    const auto path = path_of(dir, name);
    if (!path)
        return -1;
    std::string text;
    for (const KbSection &section : gSections) {
        text += '[' + section.name + "]\n";
        for (const AcAction &action : gActions)
            save_action(text, section, action);
        text += '\n';
    }
    return replace_file_write(path->c_str(), text);
}

} // namespace tav

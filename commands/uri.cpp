// Making and reading lists of file URIs. What is read comes from other programs and is believed in
// nothing: every line is checked, every amount has a limit, the work is linear.
#include "commands/uri.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <deque>
#include <unistd.h>
#include <unordered_map>
#include <unordered_set>

namespace tav {

namespace {

constexpr char HEX[] = "0123456789ABCDEF";

// Plain comparisons: the classification of characters must not follow the locale.
bool x_is_plain(unsigned char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
           c == '.' || c == '_' || c == '~' || c == '/';
}

int x_hex_value(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

void x_encode(std::string &out, std::string_view path)
{
    for (char c : path) {
        auto byte = static_cast<unsigned char>(c);
        if (x_is_plain(byte)) {
            out.push_back(c);
        } else {
            out.push_back('%');
            out.push_back(HEX[byte >> 4]);
            out.push_back(HEX[byte & 0xF]);
        }
    }
}

bool x_equals_nocase(std::string_view a, std::string_view b)
{
    auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [&](char x, char y) { return lower(x) == lower(y); });
}

// Other programs simplify a path by its text alone, so what leaves us is simple already.
std::string x_plain_directory(const char *directory)
{
    std::string_view view(directory);
    std::string with_end = std::string(view) + "/";
    bool plain = with_end.find("/./") == std::string::npos &&
                 with_end.find("/../") == std::string::npos && view.substr(0, 2) != "//";
    char resolved[PATH_MAX];
    if (plain || !realpath(directory, resolved))
        return std::string(view);
    return resolved;
}

// Calls put with the separator-free directory prefix and every name that is not gone.
template <typename Put>
void x_for_each(const FileListRecord &list, Put put)
{
    std::string prefix = x_plain_directory(list.directory);
    if (prefix.empty() || prefix.back() != '/')
        prefix += '/';
    for (const char *name : list.names)
        if (*name)
            put(prefix, name);
}

// Appends prefix encoded once and each name; before and after stand around every URI.
void x_append_uris(std::string &out, const FileListRecord &list, const char *before,
                   const char *after)
{
    std::string encoded_prefix;
    x_for_each(list, [&](const std::string &prefix, const char *name) {
        if (encoded_prefix.empty())
            encoded_prefix = uri_from_path(prefix);
        out += before;
        out += encoded_prefix;
        x_encode(out, name);
        out += after;
    });
}

// One directory's names while a list is being read.
struct Group {
    std::string directory;
    std::unordered_set<std::string> seen;
    std::vector<std::string_view> names; // into seen, whose texts stay where they are
};

// Everything that was read so far.
struct Groups {
    std::deque<Group> groups; // a group never moves, the views into it stay good
    std::unordered_map<std::string, size_t> index; // directory to its place in groups
    size_t count = 0;
    size_t refused = 0;
};

void x_add_path(Groups &all, const std::string &path)
{
    size_t slash = path.rfind('/');
    std::string name = path.substr(slash + 1);
    std::string directory = slash ? path.substr(0, slash) : "/";
    if (!transf_is_name(name) || !transf_is_directory(directory)) {
        all.refused++;
        return;
    }
    auto [found, is_new] = all.index.try_emplace(directory, all.groups.size());
    if (is_new)
        all.groups.emplace_back().directory = directory;
    Group &group = all.groups[found->second];
    auto [place, first_time] = group.seen.insert(std::move(name));
    if (first_time) {
        group.names.push_back(*place);
        all.count++;
    }
}

// Runs of "/" become one, those at the end go.
void x_strip_slashes(std::string &path)
{
    auto both = [](char a, char b) { return a == '/' && b == '/'; };
    path.erase(std::unique(path.begin(), path.end(), both), path.end());
    if (path.size() > 1 && path.back() == '/')
        path.pop_back();
}

// Takes the next line off the text, without its end and blanks around it.
std::string_view x_next_line(std::string_view &text)
{
    size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    while (!line.empty() && (line.back() == '\r' || line.back() == ' ' || line.back() == '\t'))
        line.remove_suffix(1);
    while (!line.empty() && (line.front() == ' ' || line.front() == '\t'))
        line.remove_prefix(1);
    return line;
}

} // namespace

std::string uri_encode(std::string_view path)
{
    std::string out;
    out.reserve(path.size() + path.size() / 4);
    x_encode(out, path);
    return out;
}

int uri_decode(std::string_view text, std::string &out)
{
    std::string result;
    result.reserve(text.size());
    for (size_t i = 0; i < text.size(); i++) {
        if (text[i] != '%') {
            result.push_back(text[i]);
            continue;
        }
        if (i + 2 >= text.size())
            return -1;
        int high = x_hex_value(text[i + 1]), low = x_hex_value(text[i + 2]);
        int byte = high * 16 + low;
        if (high < 0 || low < 0 || byte == 0 || byte == '/')
            return -1;
        result.push_back(static_cast<char>(byte));
        i += 2;
    }
    out = std::move(result);
    return 0;
}

std::string uri_from_path(std::string_view path) { return "file://" + uri_encode(path); }

bool uri_is_local_host(std::string_view host)
{
    if (host.empty() || x_equals_nocase(host, "localhost"))
        return true;
    char name[HOST_NAME_MAX + 1] = "";
    if (gethostname(name, sizeof name - 1) != 0)
        return false;
    std::string_view own(name);
    return x_equals_nocase(host, own) || x_equals_nocase(host, own.substr(0, own.find('.')));
}

int uri_to_path(std::string_view uri, std::string &path)
{
    constexpr std::string_view scheme = "file:";
    if (!x_equals_nocase(uri.substr(0, scheme.size()), scheme))
        return -1;
    std::string_view rest = uri.substr(scheme.size());
    if (rest.substr(0, 2) == "//") {
        rest.remove_prefix(2);
        std::string_view host = rest.substr(0, rest.find('/'));
        if (!uri_is_local_host(host))
            return -1;
        rest.remove_prefix(host.size());
    }
    // "?" and "#" begin what is no part of the path: nobody means a file of another name by them.
    if (rest.empty() || rest[0] != '/' || rest.size() > 3 * URI_MAX_PATH ||
        rest.find_first_of(std::string_view("?#\0", 3)) != rest.npos)
        return -1;
    std::string bytes;
    if (uri_decode(rest, bytes) != 0)
        return -1;
    x_strip_slashes(bytes);
    path = std::move(bytes);
    return 0;
}

std::string uri_make_list(const FileListRecord &list)
{
    std::string out;
    x_append_uris(out, list, "", "\r\n");
    return out;
}

std::string uri_make_gnome(const FileListRecord &list, bool cut)
{
    std::string out = cut ? "cut" : "copy";
    x_append_uris(out, list, "\n", "");
    return out;
}

std::string uri_make_kde_mark(bool cut) { return cut ? "1" : "0"; }

std::string uri_make_plain(const FileListRecord &list)
{
    std::string out;
    x_for_each(list, [&](const std::string &prefix, const char *name) {
        if (!out.empty())
            out += '\n';
        out += prefix;
        out += name;
    });
    return out;
}

int uri_parse_list(std::string_view text, UriFiles &files)
{
    if (text.size() > URI_MAX_BYTES)
        return -1;
    if (!text.empty() && text.back() == '\0') // some programs count the terminator
        text.remove_suffix(1);
    Groups all;
    std::string path;
    while (!text.empty()) {
        std::string_view line = x_next_line(text);
        if (line.empty() || line[0] == '#')
            continue;
        if (uri_to_path(line, path) == 0)
            x_add_path(all, path);
        else
            all.refused++;
        if (all.count > URI_MAX_COUNT)
            return -1;
    }
    if (all.groups.empty())
        return -1;
    files.refused = all.refused;
    files.groups.clear();
    for (const Group &group : all.groups)
        files.groups.push_back(transf_make(group.directory, group.names));
    return 0;
}

int uri_parse_gnome(std::string_view text, bool &cut, UriFiles &files)
{
    if (!text.empty() && text.back() == '\0') // some programs count the terminator
        text.remove_suffix(1);
    std::string_view verb = x_next_line(text);
    if ((verb != "cut" && verb != "copy") || uri_parse_list(text, files) != 0)
        return -1;
    cut = verb == "cut";
    return 0;
}

bool uri_parse_kde_mark(std::string_view text) { return !text.empty() && text[0] == '1'; }

} // namespace tav

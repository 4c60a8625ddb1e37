// Small routines: walking a tree, making paths, two tests of texts.
#include "commands/misc.h"

#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <memory>
#include <vector>

namespace tav {

namespace {

constexpr mode_t MODE_DIRECTORY = 0755;

using DirHandle = std::unique_ptr<DIR, int (*)(DIR *)>;

bool x_is_dots(const char *name)
{
    return std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0;
}

// The names in a directory, read at once so that no descriptor stays open on the way down.
int x_read_names(const char *path, std::vector<std::string> &names)
{
    DirHandle directory(opendir(path), closedir);
    if (!directory)
        return -1;
    while (const dirent *entry = readdir(directory.get())) {
        if (!x_is_dots(entry->d_name))
            names.emplace_back(entry->d_name);
    }
    return 0;
}

int x_visit_child(const std::string &path, const MiscVisit &visit, int parent_first)
{
    struct stat info;
    if (lstat(path.c_str(), &info) != 0)
        return 0;
    if (S_ISDIR(info.st_mode))
        return misc_walktree(path.c_str(), visit, parent_first);
    return visit(path, info);
}

// Where the parts of a path begin that have to be made: behind "//" and a node's number.
size_t x_skip_node(const std::string &path)
{
    if (!path.starts_with("//"))
        return 0;
    size_t end = path.find('/', 2);
    std::string node = path.substr(2, end == path.npos ? end : end - 2);
    return !node.empty() && misc_all_digits(node.c_str()) ? 2 + node.size() : 0;
}

} // namespace

int misc_walktree(const char *path, const MiscVisit &visit, int parent_first)
{
    struct stat info;
    if (stat(path, &info) != 0 || !S_ISDIR(info.st_mode))
        return -1;
    std::string directory = path;
    if (parent_first && visit(directory, info) == -1)
        return -1;
    std::vector<std::string> names;
    if (x_read_names(path, names) != 0)
        return -1;
    std::string prefix = directory.ends_with('/') ? directory : directory + "/";
    for (const std::string &name : names) {
        if (x_visit_child(prefix + name, visit, parent_first) == -1)
            return -1;
    }
    return !parent_first && visit(directory, info) == -1 ? -1 : 0;
}

int misc_mkdir(const char *path)
{
    if (mkdir(path, MODE_DIRECTORY) == 0)
        return 0;
    struct stat info;
    if (errno != EEXIST || stat(path, &info) != 0)
        return -1;
    if (S_ISDIR(info.st_mode))
        return 0;
    errno = ENOTDIR;
    return -1;
}

int misc_mkpath(const char *path)
{
    std::string whole = path;
    size_t position = x_skip_node(whole);
    while (position < whole.size()) {
        position = whole.find_first_not_of('/', position);
        if (position == whole.npos)
            break;
        size_t end = whole.find('/', position);
        position = end == whole.npos ? whole.size() : end;
        struct stat info;
        std::string part = whole.substr(0, position);
        bool there = stat(part.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
        if (!there && misc_mkdir(part.c_str()) != 0)
            return -1;
    }
    return 0;
}

bool misc_all_digits(const char *text) { return text[std::strspn(text, "0123456789")] == '\0'; }

void misc_trim(std::string &text)
{
    size_t first = text.find_first_not_of(' ');
    if (first == text.npos) {
        text.clear();
        return;
    }
    size_t last = text.find_last_not_of(' ');
    text = text.substr(first, last - first + 1);
}

} // namespace tav

// The hotlist's file.
#include "model/es.h"
#include "platform/replace_file.h"
#include "views/tree_hotlist.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tav {

namespace {

constexpr size_t FILE_LIMIT = 256 * 1024 * 1024; // bytes; more is no hotlist
constexpr int LOCK_TRIES = 100;                  // of 10 ms each, then it goes on without the lock
constexpr useconds_t LOCK_PAUSE = 10000;

// What the file held when it was last read or written; the list's changes are told against it.
std::vector<std::string> sBase;
bool sUnreadable; // there was a file that could not be read

// Keeps other instances from writing between our reading and our writing: a lock on the directory.
class DirectoryLock {
public:
    explicit DirectoryLock(const char *dir)
        : fd_(open(dir ? dir : ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC))
    {
        for (int i = 0; fd_ >= 0 && i < LOCK_TRIES; ++i) {
            if (flock(fd_, LOCK_EX | LOCK_NB) == 0)
                return;
            usleep(LOCK_PAUSE);
        }
    }
    ~DirectoryLock()
    {
        if (fd_ >= 0)
            close(fd_);
    }
    DirectoryLock(const DirectoryLock &) = delete;
    DirectoryLock &operator=(const DirectoryLock &) = delete;

private:
    int fd_;
};

std::string joined(const char *dir, const char *name)
{
    std::string path;
    es_construct_fullpath(path, dir, name);
    return path;
}

std::string text_of(const std::vector<std::string> &paths)
{
    std::string text;
    for (const std::string &path : paths)
        text += path + '\n';
    return text;
}

} // namespace

std::vector<std::string> tree_split_lines(std::string_view content)
{
    std::vector<std::string> lines;
    while (!content.empty()) {
        const size_t end = std::min(content.find('\n'), content.size());
        std::string_view line = content.substr(0, end);
        content.remove_prefix(std::min(end + 1, content.size()));
        do {
            const std::string_view piece = line.substr(0, TREE_LINE);
            lines.emplace_back(piece.substr(0, piece.find('\0')));
            line.remove_prefix(piece.size());
        } while (!line.empty());
    }
    return lines;
}

int tree_load(TreeView *tree, const char *dir, const char *name)
{
    std::string content;
    const bool read = replace_file_read(joined(dir, name).c_str(), content, FILE_LIMIT) == 0;
    sUnreadable = !read && errno != ENOENT;
    std::vector<std::string> paths = gTree.paths; // a later load adds, as the first one does
    const std::vector<std::string> lines =
        read ? tree_split_lines(content) : std::vector<std::string>{"/"};
    paths.insert(paths.end(), lines.begin(), lines.end());
    tree_set_paths(paths);
    sBase = gTree.paths;
    if (tree && gTreeRows.rebuilt)
        gTreeRows.rebuilt(tree);
    return 0;
}

int tree_save(TreeView *tree, const char *dir, const char *name)
{
    const std::string path = joined(dir, name);
    const DirectoryLock lock(dir);
    std::string content;
    std::vector<std::string> result = gTree.paths;
    if (replace_file_read(path.c_str(), content, FILE_LIMIT) == 0)
        result = tree_merge(sBase, gTree.paths, tree_split_lines(content));
    else if (errno != ENOENT && sUnreadable && gTree.paths == sBase)
        return -1; // nothing of ours to keep, and what is there cannot be seen: leave it alone
    if (replace_file_write(path.c_str(), text_of(result)) < 0)
        return -1;
    const bool changed = result != gTree.paths;
    tree_set_paths(result);
    sBase = gTree.paths;
    if (changed && tree && gTreeRows.rebuilt)
        gTreeRows.rebuilt(tree);
    return 0;
}

} // namespace tav

// Input histories: reading, writing, adding, finding, and the combo box that shows one.
#include "app/cl.h"

#include "platform/replace_file.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <string_view>
#include <unistd.h>
#include <utility>

namespace tav {

namespace {

constexpr size_t PIECE_SIZE = 1022;                       // bytes of an entry read from a file
constexpr size_t READ_LIMIT = CL_SIZE * (PIECE_SIZE + 1); // all that 20 entries can take up

std::string x_path(const char *dir, const char *name)
{
    if (!dir || !name)
        return "";
    std::string path = dir;
    if (!path.ends_with('/'))
        path += '/';
    return path + name;
}

std::string &x_slot(ClHistory *list, int k) { return list->items[(list->head + k) % CL_SIZE]; }
const std::string &x_slot(const ClHistory *list, int k)
{
    return list->items[(list->head + k) % CL_SIZE];
}

// The beginning of a file, at most READ_LIMIT bytes; empty when it cannot be read.
std::string x_read_start(const std::string &path)
{
    std::string content;
    int fd = path.empty() ? -1 : open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (fd < 0)
        return content;
    content.resize(READ_LIMIT);
    size_t have = 0;
    while (have < READ_LIMIT) {
        ssize_t size = read(fd, content.data() + have, READ_LIMIT - have);
        if (size < 0 && errno == EINTR)
            continue;
        if (size <= 0)
            break;
        have += static_cast<size_t>(size);
    }
    close(fd);
    content.resize(have);
    return content;
}

// Cuts the next piece off text: to the newline, at most PIECE_SIZE bytes. What follows a NUL is
// lost, a newline right behind a full piece belongs to it.
std::string x_take_piece(std::string_view &text)
{
    std::string_view piece = text.substr(0, PIECE_SIZE);
    size_t newline = piece.find('\n');
    piece = piece.substr(0, newline);
    text.remove_prefix(piece.size());
    if (text.starts_with('\n'))
        text.remove_prefix(1);
    return std::string(piece.substr(0, piece.find('\0')));
}

} // namespace

ClHistory *cl_read(const char *dir, const char *name)
{
    ClHistory *list = new ClHistory{};
    std::string content = x_read_start(x_path(dir, name));
    std::string_view rest = content;
    while (!rest.empty() && list->count < CL_SIZE)
        list->items[list->count++] = x_take_piece(rest);
    list->flags = CL_CHANGED;
    return list;
}

void cl_save(const ClHistory *list, const char *dir, const char *name)
{
    std::string path = x_path(dir, name);
    if (!list || path.empty())
        return;
    std::string content;
    for (int k = 0; k < list->count; k++) {
        const std::string &text = x_slot(list, k);
        if (text.find('\n') != text.npos)
            continue; // would come back as several entries
        content += text;
        content += '\n';
    }
    replace_file_write(path.c_str(), content);
}

void cl_destroy(ClHistory *list) { delete list; }

void cl_add(ClHistory *list, const char *text)
{
    if (!list || !text)
        return;
    int found = 0;
    while (found < list->count && x_slot(list, found) != text)
        found++;
    if (found == 0 && list->count > 0)
        return;
    if (found < list->count) {
        for (int k = found; k > 0; k--)
            std::swap(x_slot(list, k), x_slot(list, k - 1));
    } else {
        std::string copy = text; // may be one of the entries
        list->head = list->count == 0 ? 0 : (list->head + CL_SIZE - 1) % CL_SIZE;
        x_slot(list, 0) = std::move(copy);
        if (list->count < CL_SIZE)
            list->count++;
    }
    list->flags |= CL_CHANGED;
}

const char *cl_get(const ClHistory *list, int n)
{
    if (!list || n < 1 || n > list->count)
        return nullptr;
    return x_slot(list, n - 1).c_str();
}

int cl_apply(ClHistory *list, const ClBox &box)
{
    if (!list || !(list->flags & CL_CHANGED))
        return 0;
    box.clear(box.widget);
    if (list->count == 0)
        return 1; // still to be shown: the first entry will find the bit set
    int first = std::min(list->count, CL_SIZE - list->head);
    box.insert(box.widget, list->items + list->head, first, 1);
    if (list->count > first)
        box.insert(box.widget, list->items, list->count - first, 0);
    list->flags &= ~CL_CHANGED;
    return 1;
}

void cl_text_select(const ClBox &box, int index)
{
    // Strictly below: a box with a single item gets no selection, meant so.
    if (index >= 1 && index < box.count(box.widget))
        box.select(box.widget, index);
}

const char *cl_is_web_address(const char *text)
{
    if (!text)
        return nullptr;
    for (std::string_view prefix : {"http://", "ftp://", "gopher://", "file://"})
        if (strncmp(text, prefix.data(), prefix.size()) == 0)
            return text + prefix.size();
    return nullptr;
}

const char *cl_find_pattern(const ClHistory *list, const char *text)
{
    if (!list || !text)
        return nullptr;
    const char *behind = cl_is_web_address(text);
    std::string_view wanted = behind ? behind : text;
    for (int k = 0; k < list->count; k++) {
        const char *entry = x_slot(list, k).c_str();
        const char *stripped = cl_is_web_address(entry);
        if (!stripped)
            stripped = entry;
        if (strncmp(stripped, wanted.data(), wanted.size()) == 0)
            return stripped;
    }
    return nullptr;
}

} // namespace tav

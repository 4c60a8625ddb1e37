// One pass over the selected entries.
#include "views/prop_gather.h"

#include "model/es.h"

#include <climits>
#include <cstring>

namespace tav {
namespace {

std::string x_count(int count, const char *one, const char *many)
{
    return std::to_string(count) + ' ' + (count == 1 ? one : many);
}

// Adds a name to those that are shown, until one does not fit any more.
void x_join(PropSummary &summary, size_t &running, const char *name, size_t length)
{
    running += length + 2;
    if (running >= PROP_JOINED_LIMIT)
        return;
    if (!summary.joined.empty())
        summary.joined += ", ";
    summary.joined.append(name, length);
}

void x_add(PropSummary &summary, const DirEntry &entry)
{
    const bool directory = dir_is_directory(entry);
    const bool first = summary.count == 0;
    summary.count++;
    summary.directories += directory;
    summary.size += directory ? 0 : static_cast<uint64_t>(entry.stat.st_size);
    summary.common &= entry.stat.st_mode;
    if (first) {
        summary.first = entry.name;
        summary.uid = entry.stat.st_uid;
        summary.gid = entry.stat.st_gid;
    }
    if (summary.uid != static_cast<int64_t>(entry.stat.st_uid))
        summary.uid = -1;
    if (summary.gid != static_cast<int64_t>(entry.stat.st_gid))
        summary.gid = -1;
}

} // namespace

PropSummary prop_gather(const DirListing &listing)
{
    PropSummary summary;
    size_t running = 0;
    for (int i = 0; i < listing.count; i++) {
        const DirEntry &entry = *listing.entries[static_cast<size_t>(i)];
        if (!(entry.flags & DIR_SELECTED))
            continue;
        x_add(summary, entry);
        summary.one = summary.count == 1 ? i : -1;
        const size_t length = strlen(entry.name);
        summary.names.append(entry.name, length + 1);
        x_join(summary, running, entry.name, length);
    }
    return summary;
}

std::string prop_comment(const PropSummary &summary)
{
    const int files = summary.count - summary.directories;
    if (files == 0)
        return "(" + std::to_string(summary.directories) + " directories)";
    if (summary.directories == 0)
        return "(" + std::to_string(files) + " files)";
    return "(" + std::to_string(summary.count) +
           " items: " + x_count(summary.directories, "directory", "directories") + ", " +
           x_count(files, "file", "files") + ")";
}

std::string prop_size(uint64_t size)
{
    std::string text = std::to_string(size);
    for (size_t at = text.size(); at > 3;) {
        at -= 3;
        text.insert(at, 1, ',');
    }
    return text;
}

std::string prop_total(uint64_t size)
{
    std::string text;
    if (size > INT32_MAX)
        return ll2str(size);
    es_generate_byte_string(text, static_cast<int32_t>(size));
    return text;
}

} // namespace tav

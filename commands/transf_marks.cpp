// The set of files that were cut.
#include "commands/transf_marks.h"

namespace tav {

namespace {

// Blanks every marked name of a directory.
void x_remove_all(TransfMarks &marks, TransfMarks::Directory &directory)
{
    for (const auto &[name, place] : directory.names)
        directory.list->names[static_cast<size_t>(place)] = "";
    marks.left -= directory.names.size();
    directory.names.clear();
}

} // namespace

void transf_marks_set(TransfMarks &marks, TransfFiles &files)
{
    transf_marks_clear(marks);
    for (FileListRecord &list : files.lists) {
        TransfMarks::Directory &directory = marks.directories[list.directory];
        directory.list = &list;
        directory.names.reserve(list.names.size());
        for (int i = 0; i < list.count; i++)
            if (*list.names[static_cast<size_t>(i)])
                directory.names.emplace(list.names[static_cast<size_t>(i)], i);
        marks.left += directory.names.size();
    }
}

void transf_marks_clear(TransfMarks &marks)
{
    marks.directories.clear();
    marks.left = 0;
}

bool transf_marks_has(const TransfMarks &marks, const std::string &directory, std::string_view name)
{
    if (marks.left == 0)
        return false;
    auto found = marks.directories.find(directory);
    return found != marks.directories.end() && found->second.names.count(name) != 0;
}

bool transf_marks_remove(TransfMarks &marks, const std::string &directory, std::string_view name)
{
    auto found = marks.directories.find(directory);
    if (found == marks.directories.end())
        return false;
    auto place = found->second.names.find(name);
    if (place == found->second.names.end())
        return false;
    found->second.list->names[static_cast<size_t>(place->second)] = "";
    found->second.names.erase(place);
    marks.left--;
    return true;
}

bool transf_marks_remove_tree(TransfMarks &marks, const std::string &directory)
{
    const size_t before = marks.left;
    if (auto itself = marks.directories.find(directory); itself != marks.directories.end())
        x_remove_all(marks, itself->second);
    const std::string below = directory + '/';
    for (auto at = marks.directories.lower_bound(below);
         at != marks.directories.end() && at->first.compare(0, below.size(), below) == 0; ++at)
        x_remove_all(marks, at->second);
    return marks.left != before;
}

} // namespace tav

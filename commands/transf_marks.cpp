// The set of files that were cut.
#include "commands/transf_marks.h"

namespace tav {

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

} // namespace tav

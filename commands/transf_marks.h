// The set of files that were cut, asked once per row: a hash over the names of one offer. Knows no
// Qt.
#pragma once

#include "commands/transf_take.h"

#include <map>
#include <string>
#include <string_view>
#include <unordered_map>

namespace tav {

struct TransfMarks {
    // Per directory the names that are still there and where they stand in the offer's list. The
    // views point into the lists.
    struct Directory {
        std::unordered_map<std::string_view, int> names;
        FileListRecord *list;
    };
    std::map<std::string, Directory> directories; // in order, so that a tree stands together
    size_t left = 0;                              // names in all directories
};

// Marks every file of an offer. The offer must stay where it is as long as the marks do.
void transf_marks_set(TransfMarks &marks, TransfFiles &files);
void transf_marks_clear(TransfMarks &marks);

bool transf_marks_has(const TransfMarks &marks, const std::string &directory,
                      std::string_view name);

// Takes the mark off and blanks the name in the offer's list. False when it is not marked.
bool transf_marks_remove(TransfMarks &marks, const std::string &directory, std::string_view name);

// The same for everything in the directory and below it.
bool transf_marks_remove_tree(TransfMarks &marks, const std::string &directory);

} // namespace tav

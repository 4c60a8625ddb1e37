// Back and Forward of the file list: moves directories between the two stacks and shows them
// without touching the history otherwise. Main thread only.
#pragma once

#include <string>
#include <vector>

namespace tav {

// Shows the directory that was left last. When it cannot be shown (the user is told) it is
// forgotten, and the one that would have been left stays ahead.
void fl_back();

// Shows the directory that Back came from. With nothing ahead it still records the shown one
// behind.
void fl_forward();

int fl_get_back_count();
int fl_get_forward_count();

// Fill array, the most recent first; the number of paths.
int fl_get_back_list(std::vector<std::string> &array);
int fl_get_forward_list(std::vector<std::string> &array);

} // namespace tav

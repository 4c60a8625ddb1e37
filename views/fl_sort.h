// The list's sort key and direction. Not saved: every start sorts by name, ascending.
#pragma once

#include "model/dir.h"

namespace tav {

DirCompare fl_sort_function();
int fl_sort_order();  // 1 ascending, 0 descending
int fl_sort_column(); // the column sorted by, from 1
void fl_sort_again(); // sorts and shows the rows anew, as the settings and the choice are now
void fl_sort_reset(); // by name, ascending

} // namespace tav

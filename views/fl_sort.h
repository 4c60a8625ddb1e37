// The list's sort key and direction. Not saved: every start sorts by name, ascending.
#pragma once

#include "model/dir.h"

namespace tav {

DirCompare fl_sort_function();
int fl_sort_order();  // 1 ascending, 0 descending
void fl_sort_reset(); // by name, ascending

} // namespace tav

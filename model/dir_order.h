// The order of names. Private to the dir_ files.
#pragma once

#include "model/dir.h"

#include <cstddef>

namespace tav {

// Sorts count entries by name, ascending: numbers by value, the others by bytes, merged by bytes.
void dir_order_names(DirEntry **entries, size_t count);

} // namespace tav

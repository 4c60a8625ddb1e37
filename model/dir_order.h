// The order of names, and that of memory. Private to the dir_ files.
#pragma once

#include "model/dir.h"

#include <cstddef>

namespace tav {

// Sorts count entries by name, ascending: numbers by value, the others by bytes, merged by bytes.
void dir_order_names(DirEntry **entries, size_t count);

// Puts entries roughly in the order of their addresses, the highest first: those that lie in one
// stretch of memory stand together.
void dir_order_addresses(DirEntry **entries, size_t count);

} // namespace tav

// Telling the marks of cut files about items that were moved or deleted, without a trip to the main
// thread for each of them.
#pragma once

#include "fileops/fop.h"

namespace tav {

// A job's on_done. Only selected items can be marked, so only those are kept; they are handed over
// together.
void slot_item_done(FileOp *job, const char *directory, const char *name);

} // namespace tav

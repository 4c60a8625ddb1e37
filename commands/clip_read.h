// Reading the clipboard without waiting for the program that owns it.
#pragma once

#include "commands/transf_take.h"

#include <functional>
#include <memory>

namespace tav {

// How a reading ended.
enum class ClipRead {
    files,  // what it holds is in the hands of done
    none,   // it holds no files
    silent, // its owner did not answer
};

using ClipReadDone = std::function<void(ClipRead end, std::unique_ptr<TransfFiles> files)>;

// Reads and takes apart what the clipboard holds now, then calls done on the main thread. On X11 a
// worker with a connection of its own waits, and done runs only when the toolkit has told of every
// change of the clipboard up to the last byte: of what was put there later it gets nothing, for the
// next call cancels this reading. Elsewhere the toolkit is asked, and done has run when this
// returns.
void clip_read_start(const ClipReadDone &done);

} // namespace tav

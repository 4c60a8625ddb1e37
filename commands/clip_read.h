// Reading the clipboard without waiting for the program that owns it.
#pragma once

#include "commands/transf_take.h"

#include <functional>
#include <memory>

namespace tav {

// Reads and takes apart what the clipboard holds now, then calls done on the main thread, with null
// when that is no file list or its owner did not answer. On X11 a worker with a connection of its
// own waits; elsewhere the toolkit is asked, and done has run when this returns.
void clip_read_start(std::function<void(std::unique_ptr<TransfFiles>)> done);

} // namespace tav

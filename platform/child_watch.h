// Collects the kept children as soon as they end, from the main loop. Qt inside, none outside.
#pragma once

namespace tav {

// From now on every child that child_keep takes over is watched. Main thread, after the application
// object and the gate exist; harmless to repeat.
void child_watch_install();

} // namespace tav

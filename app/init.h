// Start-up in its exact order, and the signals that end it or refresh it. Main thread only.
#pragma once

namespace tav {

// Finds the start and settings directories, reads every kept file, installs the signal handling.
// Always 0.
int init(int argc, const char *const *argv);

// SIGWINCH: reads the shown directory again, as long as the main window stands.
void signal_refresh();

} // namespace tav

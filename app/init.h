// Start-up in its exact order, and the signals that end it or refresh it. Main thread only.
#pragma once

namespace tav {

// Finds the start and settings directories, reads every kept file, installs the signal handling.
// Always 0.
int init(int argc, const char *const *argv);

// Reads the associations and, as the last step of start-up, installs the signal handling. A
// malformed file is told in a box titled "Error" and ends the program with status 1.
void init_read_associations(const char *directory, const char *name);

// SIGWINCH: reads the shown directory again, as long as the main window stands.
void signal_refresh();

} // namespace tav

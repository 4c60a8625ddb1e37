// Reading and sorting the directory while the window stays alive: rows read so far are painted,
// keys wait, Escape stops, whatever would start another read waits for the end of this one.
#pragma once

namespace tav {

// Fills in what a read tells its surroundings (gDirHooks), where nothing is filled in yet.
void fl_read_setup();

// Reads gDir.path with the list's sort. 0, or -1 when it cannot be read.
int fl_read();

// Sorts gDir with the list's sort; the window stays alive in the same way.
void fl_read_sort();

} // namespace tav

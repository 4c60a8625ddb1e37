// Jobs that wait for a free slot: files from more directories than may be worked on at a time. Main
// thread only.
#pragma once

#include <functional>

namespace tav {

// Keeps the start of a job until a slot is free, first come first served; tells the user that some
// wait, who may give them up.
void slot_wait(std::function<void()> start);

void slot_wait_next(); // starts what there is room for
void slot_wait_drop(); // gives up what waits
int slot_waiting();    // how many wait

} // namespace tav

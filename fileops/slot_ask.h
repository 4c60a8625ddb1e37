// The workers' questions as message boxes: any number at once, each answered by itself, none
// stopping the main loop. A worker waits here for its answer.
#pragma once

#include "fileops/fop.h"

class QWidget;

namespace tav {

// How jobs that have a slot speak to the user.
extern const FopReport gSlotReport;

// Brings the question of a slot's job to the front.
void slot_ask_show(const void *pane);

// Closes the question of a slot's job (null: all of them), which answers it as closing does.
void slot_ask_close(const void *pane);

} // namespace tav

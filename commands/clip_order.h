// Which came first, the user's key or another program's taking of the clipboard. Of the clipboard
// the toolkit tells at once, while a key waits its turn: after a busy moment a paste would be for
// what came later. The X server's own times tell them apart; elsewhere both come in their order.
// Main thread only.
#pragma once

namespace tav {

// Begins to watch. Once, when the application exists.
void clip_order_setup();

// This program put something there: it is what the next keys are about.
void clip_order_is_ours();

// Whether another program took the clipboard after (or in the very millisecond of) the input that
// is being dealt with. False when none is.
bool clip_order_is_later();

} // namespace tav

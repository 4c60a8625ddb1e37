// What the message boxes need of the blocking of windows, beside wblock itself.
#pragma once

namespace tav {

// The dynamic property that makes a window a message box.
constexpr char WBLOCK_MESSAGE_BOX[] = "w_message_box";

// Counted: while on, nothing but the message boxes takes what a user does. Main thread.
void wblock_exclusive(bool on);

} // namespace tav

// What the commands need of widgets: blocking a window, the focus, and how launching reports and is
// timed. Main thread only.
#pragma once

class QWidget;

namespace tav {

// Blocks (non-zero) or unblocks a window while a dialog of its own is up; what is no window is
// dimmed too.
void misc_block(QWidget *widget, int on);

void misc_give_focus(QWidget *widget);

// Connects launching with the main window: messages, the looks at new children, the end of
// children. Call once when the main window exists.
void misc_ui_setup();

} // namespace tav

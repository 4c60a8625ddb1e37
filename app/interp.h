// The key interpreter: what is typed on the file list finds names ("/", "?", or a name right away)
// or runs a command line (":"). The list gives it each key first and keeps its time. Main thread
// only.
#pragma once

class QKeyEvent;

namespace tav {

// A way of typing and the character that begins it, 0 for any other name character. gInterpModes
// ends with a null text; the interpreter and the quick reference read the same rows.
struct InterpMode {
    char begin;
    const char *keys; // as they are shown
    const char *text; // what they do
};
extern const InterpMode gInterpModes[];

// 0: not taken; 1: taken, the typing goes on; -1: taken, and it has ended.
int interp_key(const QKeyEvent &event);

void interp_clear();  // forgets what was typed
void interp_echo();   // shows it in the status line; nothing when idle
bool interp_active(); // something is being typed

} // namespace tav

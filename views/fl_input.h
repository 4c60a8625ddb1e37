// What the keyboard does on the list.
#pragma once

#include <Qt>

class QKeyEvent;
class QString;

namespace tav {

class FlView;

// The keys of the list, as they are obeyed and as the quick reference shows them. Each table ends
// with a null name.

// A key that moves the cursor.
struct FlMove {
    int key;                                    // Qt::Key
    const char *name;                           // "PgUp"
    const char *where;                          // "one page up"
    int (*target)(const FlView &view, int row); // from the cursor's row; it may lie outside
};
extern const FlMove gFlMoves[];

// What a move does to the selection, by the modifiers that are held.
struct FlMoveMode {
    Qt::KeyboardModifiers modifiers; // of Ctrl and Shift
    const char *name;                // "Ctrl-"
    const char *text;                // what it does, before where it goes
    bool extends;                    // selects all rows on the way from where it began
    bool keeps;                      // leaves alone what was selected before
};
extern const FlMoveMode gFlMoveModes[];

// Any other key.
struct FlKey {
    int key;                         // Qt::Key
    Qt::KeyboardModifiers modifiers; // Ctrl or none
    const char *name;
    const char *text;
    void (*act)(FlView &view); // null: the desktop makes something else of the key
};
extern const FlKey gFlKeys[];

// True when the key was the list's.
bool fl_input_key(FlView &view, const QKeyEvent &event);

// Text that an input method has finished, as if it had been typed.
void fl_input_text(FlView &view, const QString &text);

// True for a key that the list wants for itself although a menu may have it as a shortcut.
bool fl_input_overrides(const QKeyEvent &event);

} // namespace tav

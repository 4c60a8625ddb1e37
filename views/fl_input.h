// What the keyboard does on the list.
#pragma once

class QKeyEvent;
class QString;

namespace tav {

class FlView;

// True when the key was the list's.
bool fl_input_key(FlView &view, const QKeyEvent &event);

// Text that an input method has finished, as if it had been typed.
void fl_input_text(FlView &view, const QString &text);

// True for a key that the list wants for itself although a menu may have it as a shortcut.
bool fl_input_overrides(const QKeyEvent &event);

} // namespace tav

// Fonts by the text that the settings keep. "TextFont08" is the desktop's own text font.
#pragma once

#include <QFont>

namespace tav {

// The font of a kept text; the desktop's own when the text says nothing usable. size bytes at most
// are read.
QFont fonts_from_name(const char *name, size_t size);

// The text to keep for a font: terminated and padded with NUL, at most size - 1 bytes.
void fonts_to_name(const QFont &font, char *name, size_t size);

// Begins to read the system's list of fonts, on a thread of its own, so that it is there when the
// first text is measured. To be called before the toolkit connects to the display, which waits.
void fonts_read_early();

// Returns when the list is read; reads it where nobody has begun. Two would read it twice.
void fonts_wait();

} // namespace tav

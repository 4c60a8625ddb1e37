// Draws the texts of cells. What a text looks like is kept: the same few owners, permissions and
// dates stand in every row, and all of them again in the next repaint.
#pragma once

#include <Qt>

class QPainter;
class QRect;
class QString;

namespace tav {

// Draws one line of text, centred vertically in the area, in the painter's font and pen. Where the
// area is too narrow, the text is shortened with an ellipsis as the mode says.
void fl_text_draw(QPainter &painter, const QRect &area, Qt::AlignmentFlag side, const QString &text,
                  Qt::TextElideMode mode);

} // namespace tav

// Paints the rows of the list. Colours come from the palette alone, so that light and dark both
// hold.
#pragma once

#include <QString>

class QPainter;
class QPoint;
class QRect;

namespace tav {

class FlView;

constexpr int FL_IMAGE_SIZE = 16; // of a row's image
constexpr int FL_ROW_MARGIN = 5;  // pixels beside a column's text, as beside a header's label
constexpr int FL_ROW_SPACE = 6;   // pixels that a row is higher than its text

// Paints the rows that meet area, in the viewport's pixels.
void fl_paint(const FlView &view, QPainter &painter, const QRect &area);

// The whole text under a point of the viewport when it is shown cut off there, else empty.
QString fl_paint_cut_text(const FlView &view, const QPoint &position);

// The width at which a column shows all texts: of the rows in sight, and of the longest ones.
int fl_paint_fit(const FlView &view, int column);

} // namespace tav

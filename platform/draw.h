// Lines and colours drawn the quick way: as filled rectangles of an opaque colour. What a pen draws
// and what is translucent the toolkit draws dot by dot, and hands a tall one to threads, which it
// has to start first.
#pragma once

#include <QColor>

class QPainter;
class QRect;

namespace tav {

// The share of a (0 to 1) over b, without transparency.
QColor draw_mix(const QColor &a, const QColor &b, double share);

// A line of one pixel along the inside of the area.
void draw_outline(QPainter &painter, const QRect &area, const QColor &colour);

} // namespace tav

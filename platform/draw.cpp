// Lines and colours; see the header.
#include "platform/draw.h"

#include <QPainter>
#include <cmath>

namespace tav {

QColor draw_mix(const QColor &a, const QColor &b, double share)
{
    const auto mix = [share](int of_a, int of_b) {
        return static_cast<int>(std::lround(of_a * share + of_b * (1.0 - share)));
    };
    return {mix(a.red(), b.red()), mix(a.green(), b.green()), mix(a.blue(), b.blue())};
}

void draw_outline(QPainter &painter, const QRect &area, const QColor &colour)
{
    painter.fillRect(area.left(), area.top(), area.width(), 1, colour);
    painter.fillRect(area.left(), area.bottom(), area.width(), 1, colour);
    painter.fillRect(area.left(), area.top() + 1, 1, area.height() - 2, colour);
    painter.fillRect(area.right(), area.top() + 1, 1, area.height() - 2, colour);
}

} // namespace tav

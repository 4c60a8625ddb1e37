// The flat look; see the header.
#include "platform/style_flat.h"

#include <QPainter>
#include <QStyleOption>
#include <algorithm>
#include <qdrawutil.h>

namespace tav {

namespace {

constexpr int sLit = 104;        // what a bar's upper edge is lightened by, in percent
constexpr int sPressed = 110;    // what a header is darkened by while it is pressed, in percent
constexpr int sLine = 60;        // how much of the text's colour a thin line has, of 255
constexpr int sLineMargin = 3;   // pixels above and below the line between two headers
constexpr int sSliderMargin = 3; // pixels between a slider and the sides of its bar

constexpr int sFrame = 110;    // how much of it a menu's outline has, of 255
constexpr int sMenuMargin = 5; // pixels between a menu's outline and the lines in it

// How much of the text's colour a slider has, of 255.
constexpr int sSlider = 80;
constexpr int sSliderHovered = 120;
constexpr int sSliderHeld = 150;

QColor x_slider_colour(const QStyleOptionSlider &bar)
{
    const bool meant = bar.activeSubControls & QStyle::SC_ScrollBarSlider;
    const bool held = meant && (bar.state & QStyle::State_Sunken);
    const bool hovered = meant && (bar.state & QStyle::State_MouseOver);
    QColor colour = bar.palette.color(QPalette::WindowText);
    colour.setAlpha(held ? sSliderHeld : hovered ? sSliderHovered : sSlider);
    return colour;
}

// Thin lines are seen on light and on dark windows.
QColor x_line_colour(const QStyleOption &option)
{
    QColor colour = option.palette.color(QPalette::WindowText);
    colour.setAlpha(sLine);
    return colour;
}

} // namespace

void style_flat_tool_bar(const QStyleOptionToolBar &bar, QPainter &painter)
{
    const QRect &area = bar.rect;
    const QColor window = bar.palette.color(QPalette::Window);
    QLinearGradient gradient(area.topLeft(), area.bottomLeft());
    gradient.setColorAt(0, window.lighter(sLit));
    gradient.setColorAt(1, window);
    painter.fillRect(area, gradient);
    const bool last = bar.positionOfLine == QStyleOptionToolBar::End ||
                      bar.positionOfLine == QStyleOptionToolBar::OnlyOne;
    const QColor light(255, 255, 255, 90);
    const QColor shadow(0, 0, 0, 60);
    painter.fillRect(area.left(), area.top(), area.width(), 1, light);
    painter.fillRect(area.left(), area.bottom() - last, area.width(), 1, shadow);
    if (last)
        painter.fillRect(area.left(), area.bottom(), area.width(), 1, light);
}

void style_flat_header(const QStyleOptionHeader &header, QPainter &painter)
{
    const QRect &area = header.rect;
    QColor ground = header.palette.color(QPalette::Button);
    if (header.state & QStyle::State_Sunken)
        ground = ground.darker(sPressed);
    else if (header.state & QStyle::State_MouseOver)
        ground = ground.lighter(sLit);
    painter.fillRect(area, ground);
    const QColor line = x_line_colour(header);
    painter.fillRect(area.left(), area.bottom(), area.width(), 1, line);
    painter.fillRect(area.right(), area.top() + sLineMargin, 1, area.height() - 2 * sLineMargin,
                     line);
}

void style_flat_frame(const QStyleOption &frame, QPainter &painter)
{
    const QRect &area = frame.rect;
    const QColor line = x_line_colour(frame);
    painter.fillRect(area.left(), area.top(), area.width(), 1, line);
    painter.fillRect(area.left(), area.bottom(), area.width(), 1, line);
    painter.fillRect(area.left(), area.top() + 1, 1, area.height() - 2, line);
    painter.fillRect(area.right(), area.top() + 1, 1, area.height() - 2, line);
}

void style_flat_scroll_bar(const QStyleOptionSlider &bar, const QRect &slider, QPainter &painter)
{
    painter.fillRect(bar.rect, bar.palette.color(QPalette::Window));
    if (bar.maximum <= bar.minimum || !(bar.state & QStyle::State_Enabled))
        return;
    const bool flat = bar.orientation == Qt::Horizontal;
    painter.fillRect(flat ? slider.adjusted(0, sSliderMargin, 0, -sSliderMargin)
                          : slider.adjusted(sSliderMargin, 0, -sSliderMargin, 0),
                     x_slider_colour(bar));
}

QRect style_flat_scroll_part(const QStyleOptionSlider &bar, QStyle::SubControl part,
                             int slider_least)
{
    const bool flat = bar.orientation == Qt::Horizontal;
    const int length = flat ? bar.rect.width() : bar.rect.height();
    const qint64 range = qint64(bar.maximum) - bar.minimum;
    const qint64 share = length * qint64(bar.pageStep) / std::max<qint64>(1, range + bar.pageStep);
    const int slider =
        range > 0
            ? static_cast<int>(std::min<qint64>(length, std::max<qint64>(share, slider_least)))
            : length;
    const int start = QStyle::sliderPositionFromValue(bar.minimum, bar.maximum, bar.sliderPosition,
                                                      length - slider, bar.upsideDown);
    const auto piece = [&](int from, int to) {
        const QRect area = flat ? QRect(from, 0, to - from, bar.rect.height())
                                : QRect(0, from, bar.rect.width(), to - from);
        return QStyle::visualRect(bar.direction, bar.rect, area.translated(bar.rect.topLeft()));
    };
    switch (part) {
    case QStyle::SC_ScrollBarGroove:
        return bar.rect;
    case QStyle::SC_ScrollBarSlider:
        return piece(start, start + slider);
    case QStyle::SC_ScrollBarSubPage:
        return piece(0, start);
    case QStyle::SC_ScrollBarAddPage:
        return piece(start + slider, length);
    default:
        return {};
    }
}

void style_flat_menu(const QStyleOption &menu, QPainter &painter)
{
    painter.fillRect(menu.rect, menu.palette.color(QPalette::Base));
    style_flat_menu_frame(menu, painter);
}

void style_flat_menu_frame(const QStyleOption &menu, QPainter &painter)
{
    const QColor text = menu.palette.color(QPalette::WindowText);
    const QColor base = menu.palette.color(QPalette::Base);
    const auto mixed = [](int of_text, int of_base) {
        return (of_text * sFrame + of_base * (255 - sFrame)) / 255;
    };
    const QColor line(mixed(text.red(), base.red()), mixed(text.green(), base.green()),
                      mixed(text.blue(), base.blue()));
    qDrawPlainRect(&painter, menu.rect, line);
}

void style_flat_menu_line(const QStyleOption &item, QPainter &painter)
{
    const QRect &area = item.rect;
    painter.fillRect(area.left() + sMenuMargin, area.center().y(), area.width() - 2 * sMenuMargin,
                     1, x_line_colour(item));
}

} // namespace tav

// The flat look; see the header.
#include "platform/style_flat.h"

#include "platform/draw.h"

#include <QPainter>
#include <QStyleOption>
#include <algorithm>

namespace tav {

namespace {

constexpr int sLit = 104;        // what a bar's upper edge is lightened by, in percent
constexpr int sPressed = 110;    // what a header is darkened by while it is pressed, in percent
constexpr int sLineMargin = 3;   // pixels above and below the line between two headers
constexpr int sSliderMargin = 3; // pixels between a slider and the sides of its bar
constexpr int sArrow = 4;        // pixels: how high an arrow is, and half of its width
constexpr int sMenuMargin = 5;   // pixels between a menu's outline and the lines in it

// How much of the text's colour each has.
constexpr double sLine = 0.24;      // a thin line
constexpr double sFieldLine = 0.35; // the outline of a text field
constexpr double sMenuLine = 0.43;  // that of a menu
constexpr double sArrowInk = 0.7;
constexpr double sArrowGround = 0.1; // behind an arrow below the pointer
constexpr double sArrowHeld = 0.24;
constexpr double sSlider = 0.31;
constexpr double sSliderHovered = 0.47;
constexpr double sSliderHeld = 0.59;

// The share of the text's colour that a line or a sign has, on its ground.
QColor x_ink(const QStyleOption &option, double share, QPalette::ColorRole ground)
{
    return draw_mix(option.palette.color(QPalette::WindowText), option.palette.color(ground),
                    share);
}

QColor x_slider_colour(const QStyleOptionSlider &bar)
{
    const bool meant = bar.activeSubControls & QStyle::SC_ScrollBarSlider;
    const bool held = meant && (bar.state & QStyle::State_Sunken);
    const bool hovered = meant && (bar.state & QStyle::State_MouseOver);
    return x_ink(bar, held ? sSliderHeld : hovered ? sSliderHovered : sSlider, QPalette::Window);
}

// Thin lines are seen on light and on dark windows.
QColor x_line_colour(const QStyleOption &option) { return x_ink(option, sLine, QPalette::Window); }

// In steps of half a pixel, which screens of 200 % show.
void x_arrow_down(const QPoint &centre, const QColor &colour, QPainter &painter)
{
    constexpr double STEP = 0.5;
    for (int i = 0; i < 2 * sArrow; i++) {
        const double half = sArrow - i * STEP;
        painter.fillRect(
            QRectF(centre.x() + STEP - half, centre.y() - 1 + i * STEP, 2 * half, STEP), colour);
    }
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
    draw_outline(painter, frame.rect, x_line_colour(frame));
}

void style_flat_field(const QStyleOption &field, QPainter &painter)
{
    draw_outline(painter, field.rect,
                 field.state & QStyle::State_HasFocus ? field.palette.color(QPalette::Highlight)
                                                      : x_ink(field, sFieldLine, QPalette::Window));
}

void style_flat_box(const QStyleOptionComboBox &box, const QRect &arrow, QPainter &painter)
{
    painter.fillRect(box.rect, box.palette.color(QPalette::Base));
    const bool meant = box.activeSubControls & QStyle::SC_ComboBoxArrow;
    const bool held = meant && box.state & QStyle::State_Sunken;
    if (held || (meant && box.state & QStyle::State_MouseOver))
        painter.fillRect(arrow, x_ink(box, held ? sArrowHeld : sArrowGround, QPalette::Base));
    x_arrow_down(arrow.center(), x_ink(box, sArrowInk, QPalette::Base), painter);
    style_flat_field(box, painter);
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
    draw_outline(painter, menu.rect, x_ink(menu, sMenuLine, QPalette::Base));
}

void style_flat_menu_line(const QStyleOption &item, QPainter &painter)
{
    const QRect &area = item.rect;
    painter.fillRect(area.left() + sMenuMargin, area.center().y(), area.width() - 2 * sMenuMargin,
                     1, x_ink(item, sLine, QPalette::Base));
}

} // namespace tav

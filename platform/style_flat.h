// Flat tool bars, headers, frames, text fields, scroll bars and menus for the toolkit's own style.
// That draws the lines of its bevels dot by dot and hands the dots of a long one to threads, which
// costs more than all the rest of a window's first picture.
#pragma once

#include <QRect>
#include <QStyle>

class QPainter;
class QStyleOption;
class QStyleOptionComboBox;
class QStyleOptionHeader;
class QStyleOptionSlider;
class QStyleOptionToolBar;

namespace tav {

void style_flat_tool_bar(const QStyleOptionToolBar &bar, QPainter &painter);
void style_flat_header(const QStyleOptionHeader &header, QPainter &painter);
void style_flat_frame(const QStyleOption &frame, QPainter &painter);

// The outline of a text field, and a box whose text can be edited; its arrow is in that rectangle.
void style_flat_field(const QStyleOption &field, QPainter &painter);
void style_flat_box(const QStyleOptionComboBox &box, const QRect &arrow, QPainter &painter);

void style_flat_scroll_bar(const QStyleOptionSlider &bar, const QRect &slider, QPainter &painter);

// The ground of a menu, its outline, and the line between two groups of its items; on a dark window
// the toolkit's own lines cannot be seen.
void style_flat_menu(const QStyleOption &menu, QPainter &painter);
void style_flat_menu_frame(const QStyleOption &menu, QPainter &painter);
void style_flat_menu_line(const QStyleOption &item, QPainter &painter);

// The place of a part of a scroll bar, which has no arrows; slider_least is the shortest slider, in
// pixels.
QRect style_flat_scroll_part(const QStyleOptionSlider &bar, QStyle::SubControl part,
                             int slider_least);

} // namespace tav

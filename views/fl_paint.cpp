// Paints the rows of the list.
#include "views/fl_paint.h"

#include "model/dir.h"
#include "platform/draw.h"
#include "platform/shown.h"
#include "views/fl_header.h"
#include "views/fl_text.h"
#include "views/fl_view.h"

#include <QPainter>
#include <algorithm>
#include <cstring>
#include <vector>

namespace tav {

namespace {

// What one paint needs for all of its rows.
struct Look {
    QColor base, alternate; // behind rows
    QColor text, soft;      // names, and the columns beside them
    QColor selected;        // behind selected rows
    QColor selected_text;
    QColor frame;              // round the current row
    QRect columns[FL_COLUMNS]; // in the viewport's pixels, as high as the header
};

// One row's share of it.
struct RowLook {
    QRect area;
    int index; // DIR_PARENT or an entry
    bool selected;
    bool current;
    int spill; // pixels of the name's column that the size takes, having too few of its own
};

constexpr int sFitCandidates = 256; // longest texts that are measured

// Which of two colours is read better on a ground.
QColor x_readable(const QColor &ground, const QColor &a, const QColor &b)
{
    const int gray = qGray(ground.rgb());
    return std::abs(qGray(a.rgb()) - gray) >= std::abs(qGray(b.rgb()) - gray) ? a : b;
}

Look x_look(const FlView &view)
{
    const QPalette &palette = view.palette();
    const bool active = view.hasFocus() && view.isActiveWindow();
    const QPalette::ColorGroup group = active ? QPalette::Active : QPalette::Inactive;
    Look look;
    look.base = palette.color(group, QPalette::Base);
    look.alternate = draw_mix(palette.color(group, QPalette::AlternateBase), look.base, 0.7);
    look.text = palette.color(group, QPalette::Text);
    look.soft = draw_mix(look.text, look.base, 0.72);
    look.selected = palette.color(group, QPalette::Highlight);
    look.selected_text = palette.color(group, QPalette::HighlightedText);
    if (!active && look.selected == palette.color(QPalette::Active, QPalette::Highlight)) {
        look.selected =
            draw_mix(look.selected, look.base, 0.45); // a style without an inactive colour
        look.selected_text = x_readable(look.selected, look.text, look.selected_text);
    }
    look.frame = draw_mix(palette.color(group, QPalette::Highlight), look.text, 0.75);
    if (!active)
        look.frame = draw_mix(look.frame, look.base, 0.5);
    for (int column = 1; column <= FL_COLUMNS; ++column)
        look.columns[column - 1] = view.header()->section(column).translated(-view.left(), 0);
    return look;
}

// The place of a column's text in a row.
QRect x_text_area(const RowLook &row, const QRect &column, int number)
{
    QRect area(column.left(), row.area.top(), column.width(), row.area.height());
    area.adjust(FL_ROW_MARGIN, 0, -FL_ROW_MARGIN, 0);
    if (number == FL_COLUMN_NAME)
        area.adjust(FL_IMAGE_SIZE + FL_ROW_MARGIN, 0, -row.spill, 0);
    else if (number == FL_COLUMN_SIZE)
        area.adjust(-row.spill, 0, 0, 0);
    return area;
}

QString x_shown(int index, int column)
{
    const std::string text = fl_row_column(index, column);
    // A date begins with a blank, which would stand beside the margin.
    const size_t first = column == FL_COLUMN_NAME ? 0 : text.find_first_not_of(' ');
    return first == std::string::npos ? QString()
                                      : shown_text(std::string_view(text).substr(first));
}

void x_paint_text(QPainter &painter, const RowLook &row, const QRect &column, int number)
{
    const QRect area = x_text_area(row, column, number);
    if (area.width() <= 0)
        return;
    const QString text = x_shown(row.index, number);
    if (text.isEmpty())
        return;
    const bool path = number == FL_COLUMN_NAME || number == FL_COLUMN_LINK;
    fl_text_draw(painter, area, number == FL_COLUMN_SIZE ? Qt::AlignRight : Qt::AlignLeft, text,
                 path ? Qt::ElideMiddle : Qt::ElideRight);
}

void x_paint_image(QPainter &painter, const FlView &view, const RowLook &row, const QRect &column)
{
    QRect area(0, 0, FL_IMAGE_SIZE, FL_IMAGE_SIZE);
    area.moveCenter(row.area.center());
    area.moveLeft(column.left() + FL_ROW_MARGIN);
    if (area.right() < column.right())
        view.image(fl_row_image(row.index)).paint(&painter, area);
}

void x_paint_row(QPainter &painter, const FlView &view, const Look &look, const RowLook &row)
{
    if (row.selected)
        painter.fillRect(row.area, look.selected);
    x_paint_image(painter, view, row, look.columns[0]);
    for (int column = 1; column <= FL_COLUMNS; ++column) {
        const bool name = column == FL_COLUMN_NAME;
        painter.setPen(row.selected ? look.selected_text : name ? look.text : look.soft);
        x_paint_text(painter, row, look.columns[column - 1], column);
    }
    if (row.current)
        draw_outline(painter, row.area,
                     row.selected ? draw_mix(look.frame, look.selected_text, 0.5) : look.frame);
}

// A size that is cut looks like a smaller one: it rather takes from its neighbour, as long as most
// of it stands in its own column and most of the neighbour is left.
int x_spill(const FlView &view, int index)
{
    const int own = view.header()->section(FL_COLUMN_SIZE).width();
    const QString text = x_shown(index, FL_COLUMN_SIZE);
    const QFontMetrics metrics = view.fontMetrics();
    const int most_wide = static_cast<int>(text.size()) * metrics.horizontalAdvance(u'0');
    if (most_wide + 2 * FL_ROW_MARGIN <= own)
        return 0; // as nearly always
    // One more, as what is measured was rounded.
    const int missing = metrics.horizontalAdvance(text) + 1 + 2 * FL_ROW_MARGIN - own;
    const int most = std::min(own, view.header()->section(FL_COLUMN_NAME).width() / 2);
    return missing > 0 && missing <= most ? missing : 0;
}

RowLook x_row_look(const FlView &view, int row)
{
    const int index = fl_row_index(row);
    const bool entry = index >= 0;
    const DirEntry *found = entry ? gDir.entries[static_cast<size_t>(index)] : nullptr;
    return {view.row_rect(row), index, found && (found->flags & DIR_SELECTED),
            index == gDir.current, entry ? x_spill(view, index) : 0};
}

// Bytes of a column's text, without making it where that costs.
size_t x_length(const DirEntry &entry, int column)
{
    if (column == FL_COLUMN_NAME)
        return strlen(entry.name);
    if (column == FL_COLUMN_LINK)
        return (entry.flags & DIR_LINK) && entry.link ? strlen(entry.link) : 0;
    if (column == FL_COLUMN_SIZE)
        return dir_size32(entry);
    return 0; // as good as any other
}

// Indexes of the entries whose texts may be the widest.
std::vector<int> x_candidates(int column)
{
    std::vector<std::pair<size_t, int>> lengths;
    lengths.reserve(static_cast<size_t>(gDir.count));
    for (int i = 0; i < gDir.count; ++i)
        lengths.emplace_back(x_length(*gDir.entries[static_cast<size_t>(i)], column), i);
    const size_t keep = std::min<size_t>(sFitCandidates, lengths.size());
    std::partial_sort(lengths.begin(), lengths.begin() + static_cast<std::ptrdiff_t>(keep),
                      lengths.end(), std::greater<>());
    std::vector<int> found;
    for (size_t i = 0; i < keep; ++i)
        found.push_back(lengths[i].second);
    return found;
}

} // namespace

void fl_paint(const FlView &view, QPainter &painter, const QRect &area)
{
    const Look look = x_look(view);
    painter.fillRect(area, look.base);
    const int rows = fl_row_count();
    if (rows == 0)
        return;
    const int height = view.row_height();
    const int first = std::max(0, (area.top() + view.top()) / height);
    const int last = std::min(rows - 1, (area.bottom() + view.top()) / height);
    for (int row = first; row <= last; ++row) {
        const RowLook what = x_row_look(view, row);
        if (row % 2)
            painter.fillRect(what.area, look.alternate);
        x_paint_row(painter, view, look, what);
    }
    if (view.drop_row() >= 0)
        draw_outline(painter, view.row_rect(view.drop_row()).adjusted(1, 1, -1, -1), look.frame);
}

QString fl_paint_cut_text(const FlView &view, const QPoint &position)
{
    const int row = view.row_at(position);
    for (int column = 1; row >= 0 && column <= FL_COLUMNS; ++column) {
        const QRect section = view.header()->section(column).translated(-view.left(), 0);
        if (position.x() < section.left() || position.x() > section.right())
            continue;
        const RowLook look = x_row_look(view, row);
        const QString text = x_shown(look.index, column);
        const int width = x_text_area(look, section, column).width();
        return view.fontMetrics().horizontalAdvance(text) > width ? text : QString();
    }
    return {};
}

int fl_paint_fit(const FlView &view, int column)
{
    const QFontMetrics metrics = view.fontMetrics();
    int widest = view.header()->button(column)->sizeHint().width() - 2 * FL_ROW_MARGIN;
    const int extra = column == FL_COLUMN_NAME ? FL_IMAGE_SIZE + FL_ROW_MARGIN : 0;
    const auto measure = [&](int index) {
        widest = std::max(widest, metrics.horizontalAdvance(x_shown(index, column)) + extra);
    };
    const int first = view.row_at({0, 0});
    for (int row = first; row >= 0 && row < std::min(fl_row_count(), first + view.rows_per_page());
         ++row)
        measure(fl_row_index(row));
    for (int index : x_candidates(column))
        measure(index);
    return widest + 2 * FL_ROW_MARGIN + 2;
}

} // namespace tav

// The header of the file list: buttons, handles and the widths that they share.
#include "views/fl_header.h"

#include "platform/lengths.h"
#include "platform/res.h"
#include "views/fl_header_menu.h"

#include <QContextMenuEvent>
#include <QEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QStyleOptionHeader>
#include <algorithm>

namespace tav {

namespace {

struct Section {
    const char *name;  // of the button
    const char *label; // what it says
    int width;         // to begin with, in reference pixels
};

const Section sSections[FL_COLUMNS] = {
    {"fh_filename", "Name", 125}, {"fh_size", "Size", 50},   {"fh_date", "Date", 105},
    {"fh_owner", "Owner", 53},    {"fh_group", "Group", 53}, {"fh_permissions", "Permissions", 75},
    {"fh_link", "Link", 100},
};

constexpr int sHandleWidth = 9; // pixels that take hold of a border
constexpr int sKeyStep = 8;     // pixels that one key makes a column wider or narrower
constexpr int sMargin = 5;      // beside a label

bool x_is_column(int column) { return column >= 1 && column <= FL_COLUMNS; }

Qt::Alignment x_alignment(int column)
{
    return (column == FL_COLUMN_SIZE ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter;
}

} // namespace

FlHeaderButton::FlHeaderButton(int column, QWidget *parent)
    : QAbstractButton(parent), m_column(column)
{
    const Section &section = sSections[column - 1];
    setObjectName(QString::fromLatin1(section.name));
    setText(QString::fromLatin1(section.label));
    setAccessibleName(text());
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
}

QSize FlHeaderButton::sizeHint() const
{
    const QFontMetrics metrics(font());
    return {metrics.horizontalAdvance(text()) + FL_SORT_IMAGE_SIZE + 3 * sMargin,
            metrics.height() + 8};
}

bool FlHeaderButton::event(QEvent *event)
{
    if (event->type() == QEvent::HoverEnter || event->type() == QEvent::HoverLeave)
        update();
    return QAbstractButton::event(event);
}

void FlHeaderButton::keyPressEvent(QKeyEvent *event)
{
    const bool right = event->key() == Qt::Key_Right;
    if (event->modifiers() == Qt::ControlModifier && (right || event->key() == Qt::Key_Left))
        Q_EMIT widened(m_column, right ? sKeyStep : -sKeyStep);
    else
        QAbstractButton::keyPressEvent(event);
}

void FlHeaderButton::paintEvent(QPaintEvent *)
{
    QStyleOptionHeader option;
    option.initFrom(this);
    option.section = m_column - 1;
    option.orientation = Qt::Horizontal;
    option.position = m_column == 1            ? QStyleOptionHeader::Beginning
                      : m_column == FL_COLUMNS ? QStyleOptionHeader::End
                                               : QStyleOptionHeader::Middle;
    option.state |= isDown() ? QStyle::State_Sunken : QStyle::State_Raised;
    if (underMouse())
        option.state |= QStyle::State_MouseOver;
    QPainter painter(this);
    style()->drawControl(QStyle::CE_HeaderSection, &option, &painter, this);

    QRect area = rect().adjusted(sMargin, 0, -sMargin, 0);
    if (!icon().isNull()) {
        QRect image(0, 0, FL_SORT_IMAGE_SIZE, FL_SORT_IMAGE_SIZE);
        image.moveCenter(area.center());
        image.moveRight(area.right());
        icon().paint(&painter, image);
        area.setRight(image.left() - sMargin);
    }
    painter.setPen(palette().color(QPalette::ButtonText));
    painter.drawText(area, static_cast<int>(x_alignment(m_column)),
                     fontMetrics().elidedText(text(), Qt::ElideRight, area.width()));
    if (hasFocus()) {
        QStyleOptionFocusRect focus;
        focus.initFrom(this);
        focus.rect = rect().adjusted(2, 2, -2, -2);
        style()->drawPrimitive(QStyle::PE_FrameFocusRect, &focus, &painter, this);
    }
}

FlHeaderHandle::FlHeaderHandle(int column, QWidget *parent) : QWidget(parent), m_column(column)
{
    setCursor(Qt::SplitHCursor);
    setObjectName(QString::fromLatin1(sSections[column - 1].name) + QLatin1String("_handle"));
}

void FlHeaderHandle::mousePressEvent(QMouseEvent *event)
{
    m_dragging = event->button() == Qt::LeftButton;
    m_last_x = event->globalPosition().toPoint().x();
}

void FlHeaderHandle::mouseMoveEvent(QMouseEvent *event)
{
    if (!m_dragging)
        return;
    const int x = event->globalPosition().toPoint().x();
    const int by = x - m_last_x;
    m_last_x = x;
    if (by)
        Q_EMIT dragged(m_column, by);
}

void FlHeaderHandle::mouseReleaseEvent(QMouseEvent *) { m_dragging = false; }

void FlHeaderHandle::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        Q_EMIT fit_wanted(m_column);
}

FlHeader::FlHeader(QWidget *parent) : QWidget(parent)
{
    setObjectName(QLatin1String("filelist_divider"));
    for (int column = 1; column <= FL_COLUMNS; ++column) {
        const size_t i = static_cast<size_t>(column - 1);
        m_widths[i] = lengths_to_pixels(sSections[i].width);
        m_buttons[i] = new FlHeaderButton(column, this);
        connect(m_buttons[i], &QAbstractButton::clicked, this,
                [this, column] { Q_EMIT pressed(column); });
        connect(m_buttons[i], &FlHeaderButton::widened, this, &FlHeader::drag);
    }
    for (int column = 1; column <= FL_COLUMNS; ++column) {
        FlHeaderHandle *handle = new FlHeaderHandle(column, this);
        m_handles[static_cast<size_t>(column - 1)] = handle;
        connect(handle, &FlHeaderHandle::dragged, this, &FlHeader::drag);
        connect(handle, &FlHeaderHandle::fit_wanted, this, &FlHeader::fit_wanted);
    }
    place();
}

void FlHeader::contextMenuEvent(QContextMenuEvent *event)
{
    QMenu *menu = fl_header_menu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->popup(event->globalPos());
}

QSize FlHeader::sizeHint() const { return {length(), m_buttons[0]->sizeHint().height()}; }

int FlHeader::width_of(int column) const
{
    return x_is_column(column) ? m_widths[static_cast<size_t>(column - 1)] : -1;
}

int FlHeader::shown_width(int column) const
{
    return std::clamp(width_of(column), FL_WIDTH_MIN, FL_WIDTH_MAX);
}

void FlHeader::set_width(int column, int width)
{
    if (!x_is_column(column) || width_of(column) == width)
        return;
    m_widths[static_cast<size_t>(column - 1)] = width;
    place();
    Q_EMIT resized();
}

void FlHeader::drag(int column, int by)
{
    set_width(column, std::clamp(shown_width(column) + by, FL_WIDTH_MIN, FL_WIDTH_MAX));
}

QRect FlHeader::section(int column) const
{
    if (!x_is_column(column))
        return {};
    int left = 0;
    for (int i = 1; i < column; ++i)
        left += shown_width(i);
    int right = left + shown_width(column);
    if (column == FL_COLUMNS)
        right = std::max(right, width());
    return {left, 0, right - left, height()};
}

int FlHeader::length() const
{
    int length = 0;
    for (int i = 1; i <= FL_COLUMNS; ++i)
        length += shown_width(i);
    return length;
}

void FlHeader::set_offset(int offset)
{
    if (m_offset == offset)
        return;
    m_offset = offset;
    place();
}

FlHeaderButton *FlHeader::button(int column) const
{
    return x_is_column(column) ? m_buttons[static_cast<size_t>(column - 1)] : nullptr;
}

void FlHeader::show_sort(int column, bool ascending)
{
    for (FlHeaderButton *button : m_buttons) {
        button->setIcon({});
        button->setProperty("sort_image", {});
        button->setAccessibleDescription({});
    }
    FlHeaderButton *pressed_button = button(column);
    if (!pressed_button)
        return;
    const char *image = ascending ? "image_sort_up" : "image_sort_down";
    pressed_button->setIcon(res_image(image));
    pressed_button->setProperty("sort_image", QString::fromLatin1(image));
    pressed_button->setAccessibleDescription(ascending ? QStringLiteral("Sorted, ascending")
                                                       : QStringLiteral("Sorted, descending"));
}

void FlHeader::resizeEvent(QResizeEvent *) { place(); }

void FlHeader::paintEvent(QPaintEvent *)
{
    QStyleOptionHeader option; // what lies under and behind the sections
    option.initFrom(this);
    option.orientation = Qt::Horizontal;
    QPainter painter(this);
    style()->drawControl(QStyle::CE_HeaderEmptyArea, &option, &painter, this);
}

void FlHeader::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        updateGeometry();
    QWidget::changeEvent(event);
}

void FlHeader::place()
{
    for (int column = 1; column <= FL_COLUMNS; ++column) {
        const size_t i = static_cast<size_t>(column - 1);
        const QRect area = section(column).translated(-m_offset, 0);
        m_buttons[i]->setGeometry(area);
        m_handles[i]->setGeometry(area.left() + shown_width(column) - sHandleWidth / 2 - 1, 0,
                                  sHandleWidth, height());
        m_handles[i]->raise();
        m_handles[i]->setVisible(area.width() == shown_width(column)); // a stretched end has none
    }
}

} // namespace tav

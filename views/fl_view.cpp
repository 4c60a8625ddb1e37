// The widget "filelist".
#include "views/fl_view.h"

#include "model/dir.h"
#include "views/fl.h"
#include "views/fl_access.h"
#include "views/fl_drag.h"
#include "views/fl_header.h"
#include "views/fl_input.h"
#include "views/fl_mouse.h"
#include "views/fl_paint.h"

#include <QContextMenuEvent>
#include <QDropEvent>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QRubberBand>
#include <QScrollBar>
#include <QTextDocument>
#include <QToolTip>
#include <algorithm>

namespace tav {

namespace {

constexpr int sScrollPeriod = 40; // milliseconds between two steps while the pointer is outside
constexpr int sDragScrollPeriod = 100; // the same while a drag is near an edge

} // namespace

FlView::FlView(QWidget *parent) : QAbstractScrollArea(parent), m_header(new FlHeader(this))
{
    setObjectName(QLatin1String("filelist"));
    setAccessibleName(tr("Files"));
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_InputMethodEnabled);
    setAcceptDrops(true);
    viewport()->setAutoFillBackground(false); // fl_paint covers every pixel
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
    connect(m_header, &FlHeader::resized, this, [this] {
        update_ranges();
        viewport()->update();
    });
    connect(m_header, &FlHeader::pressed, this, [](int column) { fl_sort_cb(column); });
    connect(m_header, &FlHeader::fit_wanted, this, &FlView::fit_column);
    update_metrics();
    fl_access_install(this);
}

FlView::~FlView() { fl_mouse_cancel(*this); }

void FlView::set_image(int image, const QIcon &icon)
{
    if (image >= 0 && image < FL_IMAGES)
        m_images[static_cast<size_t>(image)] = icon;
}

int FlView::row_at(const QPoint &position) const
{
    const int y = position.y() + top();
    if (y < 0 || position.y() < 0)
        return -1;
    const int row = y / m_row_height;
    return row < fl_row_count() ? row : -1;
}

int FlView::row_near(int y) const
{
    return std::clamp((y + top()) / m_row_height, 0, std::max(0, fl_row_count() - 1)) -
           (fl_row_count() == 0 ? 1 : 0);
}

QRect FlView::row_rect(int row) const
{
    const int width = std::max(m_header->length(), viewport()->width());
    return {-left(), row * m_row_height - top(), width, m_row_height};
}

int FlView::rows_per_page() const { return std::max(1, viewport()->height() / m_row_height); }

int FlView::top() const { return verticalScrollBar()->value(); }
void FlView::set_top(int top) { verticalScrollBar()->setValue(top); }
int FlView::left() const { return horizontalScrollBar()->value(); }

void FlView::show_row(int row)
{
    if (row < 0)
        return;
    const int above = row * m_row_height;
    const int below = above + m_row_height - viewport()->height();
    if (top() > above)
        set_top(above);
    else if (top() < below)
        set_top(std::min(above, below));
}

void FlView::rows_changed()
{
    update_ranges();
    fl_drag_rows_changed(*this);
    viewport()->update();
}

void FlView::row_changed(int row)
{
    if (row >= 0)
        viewport()->update(row_rect(row));
}

void FlView::fit_column(int column) { m_header->set_width(column, fl_paint_fit(*this, column)); }

void FlView::show_band(const QRect &area)
{
    if (!m_band && !area.isEmpty())
        m_band = new QRubberBand(QRubberBand::Rectangle, viewport());
    if (!m_band)
        return;
    m_band->setVisible(!area.isEmpty());
    m_band->setGeometry(area.translated(-left(), -top()));
}

void FlView::set_autoscroll(bool on)
{
    if (!on)
        m_autoscroll.stop();
    else if (!m_autoscroll.isActive())
        m_autoscroll.start(sScrollPeriod, this);
}

void FlView::paintEvent(QPaintEvent *event)
{
    QPainter painter(viewport());
    fl_paint(*this, painter, event->rect());
}

void FlView::resizeEvent(QResizeEvent *event)
{
    QAbstractScrollArea::resizeEvent(event);
    place_header();
    update_ranges();
}

void FlView::scrollContentsBy(int dx, int dy)
{
    if (dx)
        m_header->set_offset(left());
    viewport()->scroll(dx, dy);
}

void FlView::changeEvent(QEvent *event)
{
    QAbstractScrollArea::changeEvent(event);
    switch (event->type()) {
    case QEvent::FontChange:
    case QEvent::StyleChange:
        update_metrics();
        break;
    case QEvent::PaletteChange:
    case QEvent::ActivationChange:
        viewport()->update();
        break;
    default:
        break;
    }
}

void FlView::set_drag_scroll(bool on)
{
    if (!on)
        m_drag_scroll.stop();
    else if (!m_drag_scroll.isActive())
        m_drag_scroll.start(sDragScrollPeriod, this);
}

void FlView::timerEvent(QTimerEvent *event)
{
    if (event->timerId() == m_drag_scroll.timerId())
        return fl_drag_scroll(*this);
    if (event->timerId() != m_autoscroll.timerId())
        return QAbstractScrollArea::timerEvent(event);
    const int y = m_pointer.y();
    const int outside = std::min(0, y) + std::max(0, y - viewport()->height());
    set_top(top() + std::clamp(outside, -8 * m_row_height, 8 * m_row_height));
    fl_mouse_move(*this, m_pointer);
}

bool FlView::event(QEvent *event)
{
    if (event->type() == QEvent::ShortcutOverride &&
        fl_input_overrides(*static_cast<QKeyEvent *>(event))) {
        event->accept();
        return true;
    }
    // Tab leaves the list, as it should; everything else is as usual.
    return QAbstractScrollArea::event(event);
}

bool FlView::viewportEvent(QEvent *event)
{
    if (event->type() != QEvent::ToolTip)
        return QAbstractScrollArea::viewportEvent(event);
    const auto *help = static_cast<QHelpEvent *>(event);
    const QString text = fl_paint_cut_text(*this, help->pos());
    // A tool tip takes what looks like markup for markup, so the name is written as such.
    QToolTip::showText(help->globalPos(),
                       text.isEmpty() ? text : Qt::convertFromPlainText(text, Qt::WhiteSpacePre),
                       viewport());
    return true;
}

void FlView::keyPressEvent(QKeyEvent *event)
{
    if (!fl_input_key(*this, *event))
        event->ignore();
}

void FlView::inputMethodEvent(QInputMethodEvent *event)
{
    if (!event->commitString().isEmpty())
        fl_input_text(*this, event->commitString());
    event->accept();
}

QVariant FlView::inputMethodQuery(Qt::InputMethodQuery query) const
{
    switch (query) {
    case Qt::ImEnabled:
        return true;
    case Qt::ImCursorRectangle: {
        const int row = std::max(0, fl_row_of_index(gDir.current));
        return row_rect(row).translated(viewport()->pos());
    }
    default:
        return QAbstractScrollArea::inputMethodQuery(query);
    }
}

void FlView::mousePressEvent(QMouseEvent *event) { fl_mouse_press(*this, *event); }

void FlView::mouseMoveEvent(QMouseEvent *event)
{
    m_pointer = event->position().toPoint();
    fl_mouse_move(*this, m_pointer);
}

void FlView::mouseReleaseEvent(QMouseEvent *event) { fl_mouse_release(*this, *event); }
void FlView::mouseDoubleClickEvent(QMouseEvent *event) { fl_mouse_double_click(*this, *event); }

void FlView::contextMenuEvent(QContextMenuEvent *event)
{
    event->accept();
    if (event->reason() == QContextMenuEvent::Mouse)
        return; // the press has opened it
    const int row = fl_row_of_index(gDir.current);
    show_row(row);
    const QRect area = row_rect(std::max(0, row));
    fl_mouse_menu(row, viewport()->mapToGlobal(QPoint(m_row_height * 2, area.center().y())));
}

void FlView::focusInEvent(QFocusEvent *event)
{
    QAbstractScrollArea::focusInEvent(event);
    viewport()->update();
    fl_access_current();
}

void FlView::focusOutEvent(QFocusEvent *event)
{
    QAbstractScrollArea::focusOutEvent(event);
    viewport()->update();
}

void FlView::dragEnterEvent(QDragEnterEvent *event) { fl_dnd_cb(*this, *event); }
void FlView::dragMoveEvent(QDragMoveEvent *event) { fl_dnd_cb(*this, *event); }
void FlView::dragLeaveEvent(QDragLeaveEvent *event) { fl_dnd_cb(*this, *event); }
void FlView::dropEvent(QDropEvent *event) { fl_dnd_cb(*this, *event); }

void FlView::set_drop_row(int row)
{
    if (row == m_drop_row)
        return;
    row_changed(m_drop_row);
    m_drop_row = row;
    row_changed(m_drop_row);
}

void FlView::update_metrics()
{
    m_row_height = std::max(fontMetrics().height(), FL_IMAGE_SIZE) + FL_ROW_SPACE;
    place_header();
    rows_changed();
}

void FlView::place_header()
{
    const int height = m_header->sizeHint().height();
    setViewportMargins(0, height, 0, 0);
    const QRect inside = viewport()->geometry();
    m_header->setGeometry(inside.left(), inside.top() - height, inside.width(), height);
}

void FlView::update_ranges()
{
    const QSize page = viewport()->size();
    verticalScrollBar()->setSingleStep(m_row_height);
    verticalScrollBar()->setPageStep(std::max(1, page.height() - m_row_height));
    verticalScrollBar()->setRange(0, std::max(0, fl_row_count() * m_row_height - page.height()));
    horizontalScrollBar()->setSingleStep(m_row_height);
    horizontalScrollBar()->setPageStep(page.width());
    horizontalScrollBar()->setRange(0, std::max(0, m_header->length() - page.width()));
}

} // namespace tav

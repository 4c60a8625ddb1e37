// The directory tree's widget as a place for drags: a hotlist row, pressed and moved, shows where
// it would go and is put there.
#include "views/tree.h"

#include <QDrag>
#include <QDragMoveEvent>
#include <QMimeData>
#include <QPainter>

namespace tav {

namespace {

constexpr int PLACE_WIDTH = 2;  // of the line that shows the place
constexpr int PLACE_RADIUS = 3; // of the knob at its left end

bool is_ours(const QDropEvent &event, const TreeView *tree)
{
    return event.source() == tree && event.mimeData()->hasFormat(QLatin1String(TREE_TRANSPORT));
}

// The lowest visible row of a top-level row: what comes after it stands below.
QTreeWidgetItem *last_row(QTreeWidgetItem *item)
{
    while (item->isExpanded() && item->childCount() > 0)
        item = item->child(item->childCount() - 1);
    return item;
}

} // namespace

QStringList TreeView::mimeTypes() const { return {QLatin1String(TREE_TRANSPORT)}; }

Qt::DropActions TreeView::supportedDropActions() const { return Qt::MoveAction; }

void TreeView::startDrag(Qt::DropActions)
{
    if (tree_outbound_cb(this) != 0)
        return;
    auto *mime = new QMimeData;
    mime->setData(QLatin1String(TREE_TRANSPORT), TREE_DRAG_DATA);
    auto *drag = new QDrag(this);
    drag->setMimeData(mime);
    const QRect rect = visualItemRect(tree_dnd_item());
    drag->setPixmap(viewport()->grab(rect & viewport()->rect()));
    drag->exec(Qt::MoveAction);
    show_place(QPoint(-1, -1));
}

// Remembers and draws the place that a drop at the position would have; none outside top-level
// rows.
void TreeView::show_place(const QPoint &position)
{
    TreeItem *row = viewport()->rect().contains(position) ? item_at(position) : nullptr;
    place_ = row && !row->parent() && row != tree_dnd_item() ? row : nullptr;
    place_after_ = place_ && position.y() > visualItemRect(place_).center().y();
    viewport()->update();
}

void TreeView::forget(const TreeItem *item)
{
    if (place_ == item)
        place_ = nullptr;
}

void TreeView::dragEnterEvent(QDragEnterEvent *event)
{
    if (is_ours(*event, this) && tree_dnd_item())
        event->acceptProposedAction();
    else
        event->ignore();
}

void TreeView::dragMoveEvent(QDragMoveEvent *event)
{
    if (!is_ours(*event, this))
        return event->ignore();
    if (viewport()
            ->rect()
            .adjusted(0, autoScrollMargin(), 0, -autoScrollMargin())
            .contains(event->position().toPoint()))
        stopAutoScroll();
    else
        startAutoScroll();
    show_place(event->position().toPoint());
    event->setDropAction(Qt::MoveAction);
    event->setAccepted(place_ != nullptr);
}

void TreeView::dragLeaveEvent(QDragLeaveEvent *)
{
    stopAutoScroll();
    show_place(QPoint(-1, -1));
}

void TreeView::dropEvent(QDropEvent *event)
{
    stopAutoScroll();
    show_place(event->position().toPoint());
    TreeItem *target = place_;
    const bool after = place_after_;
    show_place(QPoint(-1, -1));
    if (!is_ours(*event, this) || !target)
        return event->ignore();
    event->setDropAction(Qt::CopyAction); // nothing is left for the view to take away
    event->accept();
    tree_dnd_cb(this, target, after);
}

void TreeView::paintEvent(QPaintEvent *event)
{
    QTreeWidget::paintEvent(event);
    if (!place_)
        return;
    const QRect row = visualItemRect(place_after_ ? last_row(place_) : place_);
    const int y = place_after_ ? row.bottom() : std::max(row.top(), PLACE_RADIUS);
    QPainter painter(viewport());
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(palette().color(QPalette::Highlight), PLACE_WIDTH));
    painter.setBrush(palette().color(QPalette::Base));
    painter.drawLine(3 * PLACE_RADIUS, y, viewport()->width() - PLACE_RADIUS, y);
    painter.drawEllipse(QPoint(2 * PLACE_RADIUS, y), PLACE_RADIUS, PLACE_RADIUS);
}

} // namespace tav

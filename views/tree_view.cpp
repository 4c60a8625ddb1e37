// The directory tree's widget: keys, clicks, drawing. Its drags are tree_drag.cpp.
#include "views/tree_view.h"

#include "platform/res.h"
#include "platform/shown.h"
#include "views/tree.h"
#include "views/tree_jobs.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <algorithm>

namespace tav {

namespace {

constexpr int ROW_MARGIN = 6; // pixels of a row beside its image or text, as in the file list
constexpr int IMAGE_SIZE = 16;
constexpr double CURSOR_OPACITY = 0.28;       // of the highlight behind the cursor row
constexpr double CURSOR_FAINT_OPACITY = 0.12; // the same while the keyboard is elsewhere

class RowDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        QSize size = QStyledItemDelegate::sizeHint(option, index);
        size.setHeight(std::max(
            {size.height(), option.fontMetrics.height() + ROW_MARGIN, IMAGE_SIZE + ROW_MARGIN}));
        if (const auto *tree = qobject_cast<const TreeView *>(option.widget);
            tree && is_path(index))
            size.setWidth(std::min(size.width(), tree->viewport()->width() - tree->indentation()));
        return size;
    }

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override
    {
        QStyledItemDelegate::initStyleOption(option, index);
        option->state &= ~QStyle::State_HasFocus; // the whole row shows the cursor, without a frame
        if (is_path(index))
            option->textElideMode = Qt::ElideLeft;
    }

private:
    // A row of the hotlist is as wide as the pane: where that is too narrow, the end of the path
    // is what tells it from others. The names below it can be scrolled to.
    static bool is_path(const QModelIndex &index)
    {
        return !index.parent().isValid() && tree_root() == nullptr;
    }
};

// In this order: 0 collapsed, 1 expanded, 2 not used, 3 not to be read.
const QIcon &image(int index)
{
    static const QIcon images[] = {res_image("closed_folder"), res_image("open_folder"),
                                   res_image("invalid_folder"), res_image("file")};
    return images[index];
}

QString tool_tip(const TreeItem *item)
{
    std::string path;
    x_get_fullpath(item, path);
    return QStringLiteral("<span style='white-space:pre'>%1</span>")
        .arg(shown_text(path).toHtmlEscaped());
}

// Whether a key is the tree's own, whatever the menus use it for.
bool is_own_key(const QKeyEvent &event)
{
    const Qt::KeyboardModifiers with = event.modifiers() & ~Qt::KeypadModifier;
    if (event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter)
        return with == Qt::NoModifier || with == Qt::ControlModifier;
    const bool typed = with == Qt::NoModifier || with == Qt::ShiftModifier;
    return typed && !event.text().isEmpty() && event.text().at(0).isPrint();
}

} // namespace

TreeItem::TreeItem(std::string label) : QTreeWidgetItem(UserType), name(std::move(label))
{
    setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled);
    setChildIndicatorPolicy(DontShowIndicator);
}

TreeItem::~TreeItem() { tree_forget(this); }

QVariant TreeItem::data(int column, int role) const
{
    switch (role) {
    case Qt::DisplayRole:
        return shown_text(name);
    case Qt::DecorationRole:
        return image(look == TreeLook::Unreadable ? 3 : isExpanded() ? 1 : 0);
    case Qt::ToolTipRole:
        return tool_tip(this);
    default:
        return QTreeWidgetItem::data(column, role);
    }
}

TreeView::TreeView(QWidget *parent) : QTreeWidget(parent)
{
    setColumnCount(1);
    setItemDelegate(new RowDelegate(this));
    setHeaderHidden(true);
    setUniformRowHeights(true);
    setIconSize(QSize(IMAGE_SIZE, IMAGE_SIZE));
    setSelectionMode(NoSelection);
    setExpandsOnDoubleClick(false);
    setEditTriggers(NoEditTriggers);
    setDragEnabled(true);
    setAcceptDrops(true);
    setDragDropMode(DragDrop);
    setDropIndicatorShown(false); // drawn here: only top-level rows are places
    // The hidden header measures nothing: its text would need a bold font.
    header()->setMinimumSectionSize(0);
    headerItem()->setSizeHint(0, QSize(0, 0));
    header()->setStretchLastSection(false);
    header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    header()->setResizeContentsPrecision(0);
    setAccessibleName(QStringLiteral("Hotlist"));
}

TreeItem *TreeView::item_at(const QPoint &position) const
{
    return static_cast<TreeItem *>(itemAt(position));
}

TreeItem *TreeView::current() const { return static_cast<TreeItem *>(currentItem()); }

bool TreeView::event(QEvent *event)
{
    if (event->type() == QEvent::ShortcutOverride && is_own_key(*static_cast<QKeyEvent *>(event))) {
        event->accept();
        return true;
    }
    return QTreeWidget::event(event);
}

void TreeView::keyPressEvent(QKeyEvent *event)
{
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (enter && current()) {
        std::string path;
        if (event->modifiers() & Qt::ControlModifier)
            x_enter_item(this, current(), path);
        else
            tree_selection_cb(this, current());
        return;
    }
    if (event->key() == Qt::Key_Asterisk)
        return; // would read everything below, as far as the disk goes
    QTreeWidget::keyPressEvent(event);
}

void TreeView::mousePressEvent(QMouseEvent *event)
{
    tree_input_cb(this, item_at(event->pos()));
    pressed_ = event->pos();
    QTreeWidget::mousePressEvent(event);
}

// The view itself would begin a drag only from a selection, and the tree has none.
void TreeView::mouseMoveEvent(QMouseEvent *event)
{
    if (!event->buttons()) {
        QTreeWidget::mouseMoveEvent(event);
        return;
    }
    const int moved = (event->pos() - pressed_).manhattanLength();
    if ((event->buttons() & Qt::LeftButton) && moved >= QApplication::startDragDistance())
        startDrag(Qt::MoveAction);
}

void TreeView::mouseDoubleClickEvent(QMouseEvent *event)
{
    TreeItem *row = item_at(event->pos());
    const bool on_text = row && event->pos().x() >= visualItemRect(row).x();
    if (event->button() != Qt::LeftButton || !on_text) {
        QTreeWidget::mouseDoubleClickEvent(event); // on the handle it is a second click
        return;
    }
    std::string path;
    x_enter_item(this, row, path);
}

void TreeView::contextMenuEvent(QContextMenuEvent *event)
{
    const bool by_key = event->reason() == QContextMenuEvent::Keyboard;
    TreeItem *row = by_key ? current() : item_at(event->pos());
    gTree.menu_item = row;
    const QPoint place = by_key && row ? viewport()->mapToGlobal(visualItemRect(row).bottomLeft())
                                       : event->globalPos();
    if (gTreeHooks.context_menu)
        gTreeHooks.context_menu(place);
}

void TreeView::resizeEvent(QResizeEvent *event)
{
    header()->setMinimumSectionSize(viewport()->width()); // rows are as wide as the pane at least
    header()->resizeSections(QHeaderView::ResizeToContents);
    QTreeWidget::resizeEvent(event);
}

void TreeView::scrollTo(const QModelIndex &index, ScrollHint hint)
{
    const int left = horizontalScrollBar()->value();
    QTreeWidget::scrollTo(index, hint);
    horizontalScrollBar()->setValue(left); // only up and down
}

void TreeView::drawRow(QPainter *painter, const QStyleOptionViewItem &option,
                       const QModelIndex &index) const
{
    if (index == currentIndex()) {
        QColor colour = option.palette.color(QPalette::Highlight);
        colour.setAlphaF(hasFocus() ? CURSOR_OPACITY : CURSOR_FAINT_OPACITY);
        const QRect row(0, option.rect.y(), viewport()->width(), option.rect.height());
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(Qt::NoPen);
        painter->setBrush(colour);
        painter->drawRoundedRect(row.adjusted(2, 0, -2, 0), 4, 4);
        painter->setRenderHint(QPainter::Antialiasing, false);
    }
    QStyleOptionViewItem plain(option);
    plain.state &= ~(QStyle::State_HasFocus | QStyle::State_Selected);
    QTreeWidget::drawRow(painter, plain, index);
}

} // namespace tav

// The directory tree's widget and its rows: turns events into calls of views/tree.h, and draws. The
// rows keep the names' bytes; what is shown is made when it is drawn.
#pragma once

#include <QTreeWidget>
#include <cstdint>
#include <memory>
#include <string>

namespace tav {

struct TreeLevel;

// What is known of a row's directory.
enum class TreeLook : uint8_t {
    Unknown,    // being found out in the background; looks like a directory
    Unreadable, // no directory, or it cannot be read
    Leaf,       // without subdirectories
    Expandable, // with subdirectories
};

// One row: a directory. In hotlist mode a top-level row's name is its full path.
class TreeItem : public QTreeWidgetItem {
public:
    explicit TreeItem(std::string name);
    ~TreeItem() override;
    QVariant data(int column, int role) const override;
    void changed() { emitDataChanged(); } // it looks different now

    std::string name;                  // label, as bytes
    TreeLook look = TreeLook::Unknown; // change it through x_set_look
    uint64_t probe = 0;                // the question in the background, 0 none
    std::shared_ptr<TreeLevel> level;  // its level while that is being read
};

// The widget "tree".
class TreeView : public QTreeWidget {
    Q_OBJECT
public:
    explicit TreeView(QWidget *parent = nullptr);
    TreeItem *item_at(const QPoint &position) const; // null over no row
    TreeItem *current() const;
    void forget(const TreeItem *item); // it is about to go

protected:
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void scrollTo(const QModelIndex &index, ScrollHint hint = EnsureVisible) override;
    void drawRow(QPainter *painter, const QStyleOptionViewItem &option,
                 const QModelIndex &index) const override;
    void paintEvent(QPaintEvent *event) override;

    void startDrag(Qt::DropActions actions) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    QStringList mimeTypes() const override;
    Qt::DropActions supportedDropActions() const override;

private:
    void show_place(const QPoint &position);

    QPoint pressed_;            // where the button went down
    TreeItem *place_ = nullptr; // the row beside which the dragged one would go
    bool place_after_ = false;
};

} // namespace tav

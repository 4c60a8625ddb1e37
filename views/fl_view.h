// The widget "filelist": shows the rows of gDir under a header and turns events into calls of the
// fl_ functions. It keeps no row of its own: what is seen is drawn from the entries at that moment.
#pragma once

#include "views/fl_row.h"

#include <QAbstractScrollArea>
#include <QBasicTimer>
#include <QIcon>
#include <array>

class QRubberBand;

namespace tav {

class FlHeader;

class FlView : public QAbstractScrollArea {
    Q_OBJECT

public:
    explicit FlView(QWidget *parent = nullptr);
    ~FlView() override;

    FlHeader *header() const { return m_header; }
    void set_image(int image, const QIcon &icon);
    const QIcon &image(int image) const { return m_images[static_cast<size_t>(image)]; }

    int row_height() const { return m_row_height; }
    int row_at(const QPoint &position) const; // viewport's pixels; -1 where no row is
    int row_near(int y) const;     // the row at that height, or the nearest one; -1 without rows
    QRect row_rect(int row) const; // viewport's pixels, as wide as all columns
    int rows_per_page() const;     // whole rows that fit, at least 1

    int top() const; // pixels that are scrolled out above
    void set_top(int top);
    int left() const;       // and on the left
    void show_row(int row); // scrolls as little as shows it whole

    void rows_changed();       // entries came or went: ranges and everything shown are out of date
    void row_changed(int row); // one row looks different
    void fit_column(int column); // makes it as wide as its widest text

    int drop_row() const { return m_drop_row; } // the row that a drop would hit, -1 none
    void set_drop_row(int row);
    void set_drag_scroll(bool on); // calls fl_drag_scroll now and then

    // The rectangle pulled up from empty space, in pixels of the contents; an empty one hides it.
    void show_band(const QRect &area);

    // Scrolls on, and calls the mouse's handler, while the pointer is held above or below the rows.
    void set_autoscroll(bool on);

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;
    void changeEvent(QEvent *event) override;
    void timerEvent(QTimerEvent *event) override;
    bool event(QEvent *event) override;
    bool viewportEvent(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void inputMethodEvent(QInputMethodEvent *event) override;
    QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    void update_metrics();
    void update_ranges();
    void place_header();

    FlHeader *m_header;
    QRubberBand *m_band = nullptr; // made when first pulled up
    QBasicTimer m_autoscroll;
    QBasicTimer m_drag_scroll;
    QPoint m_pointer; // where a held button was last, in the viewport's pixels
    std::array<QIcon, FL_IMAGES> m_images;
    int m_row_height = 20;
    int m_drop_row = -1;
};

} // namespace tav

// The header of the file list: a button for each column, and between them handles that change the
// widths. It scrolls along with the list. Widths are the desktop's pixels.
#pragma once

#include "views/fl_row.h"

#include <QAbstractButton>
#include <QWidget>
#include <array>

namespace tav {

constexpr int FL_WIDTH_MIN = 16;   // narrower a column is not shown
constexpr int FL_WIDTH_MAX = 8000; // nor wider
constexpr int FL_SORT_IMAGE_SIZE = 12;

// One section, painted as the style paints a header.
class FlHeaderButton : public QAbstractButton {
    Q_OBJECT

public:
    FlHeaderButton(int column, QWidget *parent);
    QSize sizeHint() const override;

Q_SIGNALS:
    void widened(int column, int by); // by the keyboard: Ctrl with Left or Right

protected:
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    bool event(QEvent *event) override;

private:
    int m_column;
};

// What is dragged to make the column on its left wider; a double click fits it to its texts.
class FlHeaderHandle : public QWidget {
    Q_OBJECT

public:
    FlHeaderHandle(int column, QWidget *parent);

Q_SIGNALS:
    void dragged(int column, int by); // by: pixels since the last one
    void fit_wanted(int column);

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;

private:
    int m_column;
    int m_last_x = 0; // global x of the pointer at the last event
    bool m_dragging = false;
};

class FlHeader : public QWidget {
    Q_OBJECT

public:
    explicit FlHeader(QWidget *parent = nullptr);

    QSize sizeHint() const override;

    // The width as it was set, whatever it was: a bad one is kept but not shown. Columns from 1.
    int width_of(int column) const;
    void set_width(int column, int width);

    QRect section(int column) const; // as shown, in the header's own pixels without the offset
    int length() const;              // of all sections but the stretch of the last one
    void set_offset(int offset);     // pixels that are scrolled out on the left

    FlHeaderButton *button(int column) const; // null for a bad column

    // Shows the sort image on one section and on no other.
    void show_sort(int column, bool ascending);

Q_SIGNALS:
    void pressed(int column);
    void fit_wanted(int column);
    void resized(); // a width changed

protected:
    void resizeEvent(QResizeEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void changeEvent(QEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;

private:
    int shown_width(int column) const;
    void drag(int column, int by);
    void place();

    std::array<FlHeaderButton *, FL_COLUMNS> m_buttons{};
    std::array<FlHeaderHandle *, FL_COLUMNS> m_handles{};
    std::array<int, FL_COLUMNS> m_widths{};
    int m_offset = 0;
};

} // namespace tav

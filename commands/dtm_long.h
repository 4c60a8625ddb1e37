// A menu of any number of directories. It has items for as many rows as the screen has room for and
// gives them other directories when it is scrolled, so that neither opening nor closing it depends
// on how many there are. The arrows at its ends, the wheel, the keys and letters reach every row.
#pragma once

#include "commands/dtm_menu.h"

#include <QTimer>
#include <functional>

namespace tav {

// What the menu shows.
struct DtmRows {
    size_t count = 0;
    int room = 0;                             // pixels for the widest label
    std::function<QString(size_t row)> label; // of a row
    std::function<void(size_t top)> show;     // gives the items the rows from there on
};

class DtmLongMenu : public DtmMenu {
    Q_OBJECT

public:
    using DtmMenu::DtmMenu;

    size_t room_for(size_t count); // how many of so many rows have an item at a time
    // Adds the items, which have the first rows.
    void set_rows(const QList<DtmAnyItem *> &items, DtmRows rows);
    size_t top() const { return m_top; } // the row of the first item
    // Highlights the row, scrolling as far as it takes.
    void go_to_row(size_t row);
    bool go_to(const QString &beginning) override;

protected:
    void initStyleOption(QStyleOptionMenuItem *option, const QAction *action) const override;
    void hideEvent(QHideEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    size_t shown() const { return static_cast<size_t>(m_items.size()); }
    bool scrolls() const { return m_rows.count > shown(); }
    QAction *add_arrow();
    bool take_key(int key);
    void scroll_to(size_t top);
    void scroll_by(int rows);
    void rest_on(const QAction *arrow);
    void tick();

    DtmRows m_rows;
    QList<DtmAnyItem *> m_items; // of the rows m_top and on
    size_t m_top = 0;
    QAction *m_up = nullptr;   // at the top, null when everything fits
    QAction *m_down = nullptr; // at the bottom, likewise
    QTimer m_timer{this};      // scrolls while the pointer rests on an arrow
    int m_step = 0;            // rows by which it does, negative: up
    int m_ticks = 0;           // how often it has
    int m_wheel = 0;           // what the wheel was turned and did not make a row yet
};

} // namespace tav

// The look and the handling of menus of directories: they scroll, show items grey that are still
// being examined and arrows on items whose submenu is not made yet, take a letter as the way to the
// next item that begins with it, and let a double click or Ctrl-Enter choose an item that has a
// submenu.
#pragma once

#include "commands/dtm_scan.h"

#include <QAction>
#include <QMenu>

namespace tav {

// What the menu needs to know of an item of its own kind.
class DtmAnyItem : public QAction {
    Q_OBJECT

public:
    explicit DtmAnyItem(QObject *owner) : QAction(owner) {}

    DtmState state() const { return m_state; }
    void set_state(DtmState state) { m_state = state; } // who sets many repaints once
    virtual void arm() = 0;    // the pointer or the keys came to it: its submenu may be wanted
    virtual void choose() = 0; // it was chosen, submenu or not

private:
    DtmState m_state = DtmState::unknown;
};

class DtmMenu : public QMenu {
    Q_OBJECT

public:
    explicit DtmMenu(QWidget *parent);

    // The width in pixels that each item has at least, and at most however long its label is.
    int room() const { return m_room; }
    int limit() const;
    // Highlights the next item, after the current one and round, whose label begins like that.
    virtual bool go_to(const QString &beginning);

protected:
    void initStyleOption(QStyleOptionMenuItem *option, const QAction *action) const override;
    void actionEvent(QActionEvent *event) override;
    void set_room(int room) { m_room = room; }

private:
    int m_room = 0;
};

// Gives any menu the handling described above; once per menu is enough, more does no harm.
void dtm_menu_attend(QMenu *menu);

// Highlights an item as the arrow keys do: its submenu stays closed, the keys stay with this menu.
void dtm_menu_highlight(QMenu &menu, DtmAnyItem &item);

// Closes every open menu.
void dtm_menu_dismiss();

} // namespace tav

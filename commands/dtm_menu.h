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

    const QString &label() const { return m_label; } // what the menu shows, text() or not
    void set_label(const QString &label) { m_label = label; }
    DtmState state() const { return m_state; }
    void set_state(DtmState state) { m_state = state; } // who sets many repaints once
    virtual void arm() = 0;    // the pointer or the keys came to it: its submenu may be wanted
    virtual void choose() = 0; // it was chosen, submenu or not

private:
    QString m_label;
    DtmState m_state = DtmState::unknown;
};

class DtmMenu : public QMenu {
    Q_OBJECT

public:
    explicit DtmMenu(QWidget *parent);

    // For a menu of very many items: makes room for their labels, which a menu lays out one by one
    // when it is shown, in several turns of the main loop. Items whose text() is empty cost next to
    // nothing then.
    void make_room(const QString &label);
    int room() const { return m_room; } // the widest of them in pixels

protected:
    void initStyleOption(QStyleOptionMenuItem *option, const QAction *action) const override;
    void actionEvent(QActionEvent *event) override;

private:
    int m_room = 0;
};

// Gives any menu the handling described above; once per menu is enough, more does no harm.
void dtm_menu_attend(QMenu *menu);

// Closes every open menu.
void dtm_menu_dismiss();

} // namespace tav

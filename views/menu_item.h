// Items of a menu by their names, for the set-up functions of the views' menus.
#pragma once

#include <QAction>
#include <QMenu>

namespace tav {

// The item of that name in the menu or below it, null when there is none.
inline QAction *menu_item_find(const QMenu *menu, const char *name)
{
    for (QAction *action : menu->actions()) {
        if (action->objectName() == QLatin1String(name))
            return action;
        QAction *below = action->menu() ? menu_item_find(action->menu(), name) : nullptr;
        if (below)
            return below;
    }
    return nullptr;
}

// Dims the item or not; nothing when there is none.
inline void menu_item_enable(const QMenu *menu, const char *name, bool enabled)
{
    if (QAction *action = menu_item_find(menu, name))
        action->setEnabled(enabled);
}

} // namespace tav

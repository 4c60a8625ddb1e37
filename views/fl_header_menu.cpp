// The menu on the file list's header.
#include "views/fl_header_menu.h"

#include "app/config.h"
#include "views/fl.h"
#include "views/fl_header.h"
#include "views/fl_sort.h"
#include "views/fl_view.h"

#include <QActionGroup>
#include <QMenu>

namespace tav {

QMenu *fl_header_menu(QWidget *parent)
{
    auto *menu = new QMenu(parent);
    menu->setObjectName(QStringLiteral("fh_cmenu"));
    auto *keys = new QActionGroup(menu);
    for (int column = 1; column <= FL_COLUMNS; ++column) {
        const FlHeaderButton *button = fl_view()->header()->button(column);
        QAction *action = menu->addAction(button->text());
        action->setObjectName(QStringLiteral("sort_") + button->objectName());
        action->setCheckable(true);
        action->setChecked(column == fl_sort_column());
        action->setActionGroup(keys);
        QObject::connect(action, &QAction::triggered, menu, [column] { fl_sort_cb(column); });
    }
    menu->addSeparator();
    QAction *first = menu->addAction(QStringLiteral("&Folders First"));
    first->setObjectName(QStringLiteral("folders_first"));
    first->setCheckable(true);
    first->setChecked(gConfig->folders_first != 0);
    QObject::connect(first, &QAction::triggered, menu, fl_set_folders_first);
    return menu;
}

void fl_set_folders_first(bool on)
{
    if (fl_is_reading())
        return;
    gConfig->folders_first = on;
    fl_sort_again();
}

} // namespace tav

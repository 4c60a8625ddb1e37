// The View menu.
#include "views/vm.h"

#include "app/config.h"
#include "platform/lengths.h"
#include "platform/w.h"
#include "views/menu_item.h"
#include "views/tb.h"

#include <QToolBar>
#include <QToolButton>

namespace tav {

int vm_setup(QMenu *menu)
{
    for (const char *name : {"vm_toolbar", "vm_icon", "vm_hotlist", "vm_status"})
        menu_item_enable(menu, name, false);
    const QWidget *panel = w_find("hotlist_panel");
    if (QAction *item = menu_item_find(menu, "vm_hotlist"))
        item->setChecked(panel && !panel->isHidden());
    if (QAction *item = menu_item_find(menu, "vm_status"))
        item->setChecked(true);
    return W_CONTINUE;
}

int vm_clip_tb_toggle(QWidget *)
{
    if (auto *bar = w_find<QToolBar>("clip_tb")) {
        bar->setVisible(bar->isHidden());
        tb_save_shown();
    }
    return W_CONTINUE;
}

int vm_hotlist_toggle(QWidget *)
{
    QWidget *panel = w_find("hotlist_panel");
    if (!panel)
        return W_CONTINUE;
    const bool show = panel->isHidden();
    if (!show) // what the user made it is what it opens with again
        gConfig->hotlist_width = lengths_from_pixels(panel->width());
    panel->setVisible(show);
    gConfig->hotlist_shown = show;
    if (auto *button = w_find<QToolButton>("tb_hotlist"))
        button->setChecked(show);
    return W_CONTINUE;
}

// clang-format off
int vm_nav_tb_toggle(QWidget *) { return W_CONTINUE; }
int vm_misc_tb_toggle(QWidget *) { return W_CONTINUE; }
int vm_hotlist_tb_toggle(QWidget *) { return W_CONTINUE; }
int vm_path_tb_toggle(QWidget *) { return W_CONTINUE; }
int vm_filter_tb_toggle(QWidget *) { return W_CONTINUE; }
int vm_icon_toggle(QWidget *) { return W_CONTINUE; }
int vm_status_toggle(QWidget *) { return W_CONTINUE; }
int vm_text_and_images(QWidget *) { return W_CONTINUE; }
int vm_text_only(QWidget *) { return W_CONTINUE; }
int vm_images_only(QWidget *) { return W_CONTINUE; }
// clang-format on

} // namespace tav

// The Hotlist menu.
#include "views/hm.h"

#include "app/config.h"
#include "model/dir.h"
#include "platform/shown.h"
#include "platform/w.h"
#include "views/fl.h"
#include "views/menu_item.h"
#include "views/tb.h"
#include "views/tree.h"
#include "views/tree_go.h"

namespace tav {

HmHooks gHmHooks;

int hm_setup(QMenu *menu)
{
    const bool there = tree_lookup(gDir.path.c_str());
    menu_item_enable(menu, "hm_add", gDir.has_path && !there);
    menu_item_enable(menu, "hm_delete", there);
    return W_CONTINUE;
}

int hm_add(QWidget *)
{
    if (gDir.path.find('\n') != std::string::npos)
        wreport(gBase, "Error", "'%s' holds a line break and cannot be in the hotlist",
                shown_text(gDir.path).toStdString().c_str());
    else if (gDir.has_path)
        tree_add(tree_view(), gDir.path.c_str());
    tb_update();
    return W_CONTINUE;
}

int hm_remove(QWidget *)
{
    tree_remove(tree_view(), gDir.path.c_str());
    tb_update();
    return W_CONTINUE;
}

int hm_sort(QWidget *)
{
    tree_sort(tree_view());
    return W_CONTINUE;
}

int hm_add_selected(QWidget *) { return W_CONTINUE; }

void hm_populate(QMenu *menu, QAction *before)
{
    if (gTree.paths.empty())
        return;
    menu->insertSeparator(before);
    const unsigned flags = HM_TEST_CASCADE | (gConfig->flags & CONFIG_HIDE_DOT);
    for (const std::string &path : gTree.paths)
        if (gHmHooks.add_directory)
            gHmHooks.add_directory(menu, before, path, flags, _new_path);
}

int x_newpath_cb(QWidget *widget, const char *path)
{
    fl_newpath(widget, path);
    return W_CONTINUE;
}

int _new_path(const char *path)
{
    tree_go(path, false);
    return W_CONTINUE;
}

} // namespace tav

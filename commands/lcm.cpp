// The file list's context menu.
#include "commands/lcm.h"
#include "commands/as.h"
#include "commands/clip.h"
#include "commands/em.h"
#include "commands/fm.h"
#include "commands/fm_dlg.h"
#include "commands/mgen.h"
#include "model/dir.h"
#include "platform/w.h"

#include <QMenu>

namespace tav {

namespace {

// What the selected entries have in common.
struct Can {
    int directories = 0;
    bool open = true;
    bool view = true;
    bool edit = true;
};

void x_look_at_file(Can &can, const char *name)
{
    if (!can.open && !can.view && !can.edit)
        return;
    const int index = _get_pat_idx(name);
    auto offers = [index](AssocCommandKind kind) {
        return index >= 0 && as_command(apat[static_cast<size_t>(index)], kind) != nullptr;
    };
    can.open = can.open && offers(AS_OPEN);
    can.view = can.view && offers(AS_VIEW);
    can.edit = can.edit && offers(AS_EDIT);
}

Can x_look_at_selection()
{
    Can can;
    for (int i = 0; i < gDir.count; i++) {
        const DirEntry &entry = *gDir.entries[static_cast<size_t>(i)];
        if (!(entry.flags & DIR_SELECTED))
            continue;
        if (dir_is_directory(entry)) {
            can.directories++;
            can.open = can.view = can.edit = false;
        } else {
            x_look_at_file(can, entry.name);
        }
    }
    return can;
}

// name: of the item, "lcm_" and what it does.
void x_add(QMenu *menu, const char *name, const char *label, int (*handler)(QWidget *))
{
    QAction *action = menu->addAction(QLatin1String(label));
    action->setObjectName(QLatin1String(name));
    QObject::connect(action, &QAction::triggered, gBase, [handler] { handler(gBase); });
}

void x_add_opening(QMenu *menu, const Can &can)
{
    if (can.open || can.directories > 0)
        x_add(menu, "lcm_open", "&Open", fm_open);
    if (can.directories > 0) {
        x_add(menu, "lcm_open_another", "Open In Win&dow", fm_open_another);
    } else {
        if (can.view)
            x_add(menu, "lcm_view", "&View", fm_view);
        if (can.edit)
            x_add(menu, "lcm_edit", "&Edit", fm_edit);
        x_add(menu, "lcm_open_with", "Open &With", fm_open_with);
    }
    menu->addSeparator();
    if (can.directories == 0) {
        x_add(menu, "lcm_print", "&Print", fm_print);
        menu->addSeparator();
    }
    x_add(menu, "lcm_cut", "Cu&t", em_cut);
    x_add(menu, "lcm_copy", "C&opy", em_copy);
}

} // namespace

int lcm_setup(QMenu *menu)
{
    const bool any = gDir.nselected > 0;
    const bool paste = em_check_clipboard_for_type("files");
    if (any)
        x_add_opening(menu, x_look_at_selection());
    if (paste)
        x_add(menu, "lcm_paste", "&Paste", em_paste);
    if (any)
        x_add(menu, "lcm_delete", "&Delete", em_delete);
    if (gDir.nselected == 1)
        x_add(menu, "lcm_rename", "&Rename", fm_inspect);
    if (any || paste)
        menu->addSeparator();
    if (!any)
        return 0;
    if (mgen_work_insert(menu, nullptr) != 0)
        menu->addSeparator();
    x_add(menu, "lcm_inspect", "&Inspect", fm_inspect);
    menu->addSeparator();
    return 0;
}

int hcm_setup(QMenu *) { return 0; }

int tcm_setup(QMenu *) { return 0; }

} // namespace tav

// Which items of the File menu the selection allows, as the menu opens.
#include "commands/as.h"
#include "commands/fm.h"
#include "model/dir.h"
#include "platform/w.h"

#include <QAction>
#include <QMenu>
#include <initializer_list>

namespace tav {

namespace {

void x_dim(QMenu *menu, std::initializer_list<const char *> names)
{
    for (QAction *action : menu->actions()) {
        for (const char *name : names) {
            if (action->objectName() == QLatin1String(name))
                action->setEnabled(false);
        }
    }
}

void x_enable_all(QMenu *menu)
{
    for (QAction *action : menu->actions()) {
        action->setEnabled(true);
        if (action->menu() != nullptr)
            x_enable_all(action->menu());
    }
}

// Dims what not every selected file has a command for.
void x_dim_commands(QMenu *menu)
{
    bool has[3] = {true, true, true}; // by AssocCommandKind
    for (int i = 0; i < gDir.count && (has[AS_OPEN] || has[AS_VIEW] || has[AS_EDIT]); i++) {
        const DirEntry &entry = *gDir.entries[static_cast<size_t>(i)];
        if (!(entry.flags & DIR_SELECTED))
            continue;
        const int row = _get_pat_idx(entry.name);
        for (const AssocCommandKind kind : {AS_OPEN, AS_VIEW, AS_EDIT})
            has[kind] = has[kind] && row >= 0 &&
                        as_command(apat[static_cast<size_t>(row)], kind) != nullptr;
    }
    if (!has[AS_OPEN])
        x_dim(menu, {"fm_open"});
    if (!has[AS_VIEW])
        x_dim(menu, {"fm_view"});
    if (!has[AS_EDIT])
        x_dim(menu, {"fm_edit"});
}

} // namespace

int fm_setup(QMenu *menu)
{
    x_enable_all(menu);
    x_dim(menu, {"fm_print_directory"});
    if (gDir.nselected == 0)
        x_dim(menu, {"fm_open", "fm_open_another", "fm_open_with", "fm_edit", "fm_view", "fm_print",
                     "fm_inspect"});
    else if (gDir.nseldirs > 0)
        x_dim(menu, {"fm_open_with", "fm_edit", "fm_view", "fm_print"});
    else {
        x_dim(menu, {"fm_open_another"});
        x_dim_commands(menu);
    }
    return W_CONTINUE;
}

} // namespace tav

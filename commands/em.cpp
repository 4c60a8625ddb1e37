// The Edit menu.
#include "commands/em.h"
#include "app/config.h"
#include "commands/as_dlg.h"
#include "commands/clip.h"
#include "commands/file_op.h"
#include "commands/mgen.h"
#include "fileops/fop.h"
#include "model/dir.h"
#include "platform/shown.h"
#include "platform/w.h"
#include "views/fl.h"
#include "views/fl_view.h"
#include "views/menu_item.h"
#include "views/status.h"

#include <QMenu>

namespace tav {

namespace {

bool must_be_moved = false; // set by Cut for the copy that it is

void x_selection_done()
{
    status_bar_update();
    fl_view()->setFocus();
}

// What the question before a delete says; empty when the settings ask none.
QString x_delete_question(const FileListRecord &list)
{
    const uint32_t flags = gConfig->flags;
    if (list.count == 1) {
        const bool asks = flags & CONFIG_RM1_PROMPT || (one_dir_packed && flags & CONFIG_RM_PROMPT);
        return asks ? QStringLiteral("Do you wish to delete '%1'?\n").arg(shown_text(list.names[0]))
                    : QString();
    }
    return flags & CONFIG_RM_PROMPT
               ? QStringLiteral("You have selected %1 files?\n").arg(list.count)
               : QString();
}

// The one-directory flag goes with the list: another one may have been packed since.
void x_start_delete(const std::shared_ptr<FileListRecord> &list, bool one_dir)
{
    one_dir_packed = one_dir;
    _file_op(FOP_DELETE, std::move(*list), "");
}

} // namespace

int em_setup(QMenu *menu)
{
    const bool any = gDir.nselected > 0;
    for (const char *name : {"em_cut", "em_copy", "em_delete", "em_rename", "em_unselect",
                             "em_unselect_all", "em_unselect_pattern"})
        menu_item_enable(menu, name, any);
    menu_item_enable(menu, "em_paste", em_check_clipboard_for_type("files"));
    return W_CONTINUE;
}

void em_populate(QMenu *menu, QAction *before) { mgen_work_insert(menu, before); }

int em_copy(QWidget *)
{
    const bool cut = std::exchange(must_be_moved, false);
    if (gDir.nselected <= 0)
        return W_CONTINUE;
    const bool marked = file_any_cut(gDir.path);
    clip_put(std::make_shared<const FileListRecord>(transf_own(fl_pack_transf())), cut);
    if (cut)
        fl_unselect_all(nullptr);
    if (cut || marked)
        fl_update();
    return W_CONTINUE;
}

int em_cut(QWidget *widget)
{
    must_be_moved = true;
    return em_copy(widget);
}

int em_delete(QWidget *)
{
    if (gDir.nselected <= 0)
        return W_CONTINUE;
    auto list = std::make_shared<FileListRecord>(transf_own(fl_pack_transf()));
    const bool one_dir = one_dir_packed;
    if (list->count == 0)
        return -1;
    WQuestion question;
    question.text = x_delete_question(*list);
    if (question.text.isEmpty()) {
        x_start_delete(list, one_dir);
        return W_CONTINUE;
    }
    question.title = QStringLiteral("Delete");
    question.buttons = {QStringLiteral("&Delete"), QStringLiteral("&Cancel")};
    question.on_close = 2;
    wquestion(gBase, question, [list, one_dir](int answer) {
        if (answer == 1)
            x_start_delete(list, one_dir);
    });
    return W_CONTINUE;
}

int em_select_all(QWidget *)
{
    fl_select_all();
    x_selection_done();
    return W_CONTINUE;
}

int em_unselect_all(QWidget *widget)
{
    fl_unselect_all(widget);
    x_selection_done();
    return W_CONTINUE;
}

int em_invert_selection(QWidget *)
{
    fl_invert_all();
    x_selection_done();
    return W_CONTINUE;
}

int em_edit_associations(QWidget *)
{
    as_dlg_open(gBase);
    return W_CONTINUE;
}

// While a directory is being read its end shows the marks anyway.
void em_marks_changed()
{
    if (!fl_is_reading() && fl_view())
        fl_update();
}

} // namespace tav

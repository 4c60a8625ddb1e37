// Menu items that open the properties, new entry and pattern dialogs, and what these ask back.
#include "commands/fm_dlg.h"

#include "commands/as.h"
#include "fileops/new_dlg.h"
#include "platform/ui_gate.h"
#include "platform/w.h"
#include "platform/worker.h"
#include "views/fl.h"
#include "views/pattern.h"
#include "views/prop.h"
#include "views/status.h"

namespace tav {

int fm_inspect(QWidget *widget) { return gDir.nselected > 0 ? prop_open(widget) : W_CONTINUE; }

int fm_new_file(QWidget *widget) { return new_file_setup(widget); }

int fm_new_folder(QWidget *widget) { return new_dir_setup(widget); }

int em_select_pattern(QWidget *widget)
{
    fl_unselect_all(widget);
    gPattern_op = PATTERN_SELECT;
    return pattern_open(widget);
}

int em_unselect_pattern(QWidget *widget)
{
    if (gDir.nselected == 0)
        return W_CONTINUE;
    gPattern_op = PATTERN_UNSELECT;
    return pattern_open(widget);
}

void fm_filetype(const std::string &path, mode_t mode,
                 std::function<void(const std::string &)> arrived)
{
    worker_start([path, mode, arrived = std::move(arrived)] {
        std::string description;
        if (as_get_filetype(path.c_str(), mode, description) != 0)
            ui_post([description, arrived] { arrived(description); });
    });
}

void fm_show_new(const std::string &name)
{
    status_bar_update();
    if (QWidget *list = w_find("filelist"))
        wfocus(list);
    const int index = fl_select(name.c_str(), FL_EXACT);
    if (index >= 0)
        fl_goto_index(index);
}

} // namespace tav

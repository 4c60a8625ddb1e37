// The Edit menu's commands on the whole selection.
#include "commands/em_select.h"

#include "platform/w.h"
#include "views/fl.h"

namespace tav {

namespace {

int x_finish()
{
    if (gFlHooks.status_update != nullptr)
        gFlHooks.status_update();
    wfocus(w_find("filelist"));
    return W_CONTINUE;
}

} // namespace

int em_select_all(QWidget *)
{
    fl_select_all();
    return x_finish();
}

int em_unselect_all(QWidget *widget)
{
    fl_unselect_all(widget);
    return x_finish();
}

int em_invert_selection(QWidget *)
{
    fl_invert_all();
    return x_finish();
}

} // namespace tav

// Back and Forward: the file list on its way through the two stacks.
#include "views/fl_back.h"

#include "model/dir.h"
#include "views/fl.h"
#include "views/history.h"

namespace tav {

namespace {

const char *shown_path() { return gDir.has_path ? gDir.path.c_str() : nullptr; }

// Shows the path that came off a stack, if one did.
void show(const std::optional<std::string> &path)
{
    if (path)
        fl_setpath(path->c_str());
    if (gFlHooks.history_changed)
        gFlHooks.history_changed();
}

} // namespace

void fl_back()
{
    if (backward_history.count == 0 || fl_is_reading())
        return;
    x_history_push(forward_history, shown_path());
    show(x_history_pop(backward_history));
}

void fl_forward()
{
    if (fl_is_reading())
        return;
    // Even with nothing ahead the shown directory goes on the back stack: that is meant.
    x_history_push(backward_history, shown_path());
    show(x_history_pop(forward_history));
}

int fl_get_back_count() { return backward_history.count; }

int fl_get_forward_count() { return forward_history.count; }

int fl_get_back_list(std::vector<std::string> &array)
{
    return x_history_get_array(backward_history, array);
}

int fl_get_forward_list(std::vector<std::string> &array)
{
    return x_history_get_array(forward_history, array);
}

} // namespace tav

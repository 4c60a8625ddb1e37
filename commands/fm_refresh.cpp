// "Refresh" of the File menu.
#include "commands/fm_refresh.h"

#include "platform/w.h"
#include "views/fl.h"

namespace tav {

int fm_refresh(QWidget *)
{
    fl_refresh();
    return W_CONTINUE;
}

} // namespace tav

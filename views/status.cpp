// The status bar.
#include "views/status.h"

#include "model/dir.h"
#include "model/es.h"
#include "platform/shown.h"
#include "platform/w.h"

namespace tav {

namespace {

uint64_t selected_total()
{
    uint64_t total = 0;
    dir_each(gDir, [&](const DirEntry &entry, int) {
        if (entry.flags & DIR_SELECTED)
            total += dir_size32(entry);
    });
    return total;
}

} // namespace

void status_bar_update()
{
    QWidget *status1 = w_find("status1");
    if (gDir.nselected == 0) {
        wprintf(status1, "%s", "");
        // "0 item" is meant.
        wprintf(w_find("status2"), "%d item%s, %s", gDir.count, gDir.count > 1 ? "s" : "",
                ll2str(gDir.total));
        return;
    }
    wprintf(status1, "%d selected item%s, %s", gDir.nselected, gDir.nselected >= 2 ? "s" : "",
            ll2str(selected_total()));
}

void status_bar_key(const char *search_str)
{
    const std::string shown = shown_text(search_str ? search_str : "").toStdString();
    wprintf(w_find("status1"), "%s", shown.c_str());
    wprintf(w_find("status2"), "%s", "");
}

} // namespace tav

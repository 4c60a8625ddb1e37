// Menus that are the directory hierarchy itself: each item is a directory, its submenu the
// directories in it, scanned by a worker when it is first shown. Main thread only.
#pragma once

#include "commands/dtm_menu.h"
#include "commands/dtm_scan.h"

#include <QAction>
#include <QPointer>
#include <memory>
#include <string>
#include <string_view>

namespace tav {

// Called with the path of the chosen directory, after the menus have closed.
using DtmAction = int (*)(const char *path);

// One directory in a menu. The menu owns it; its worker, if one runs, is told to stop when it goes.
struct DirMenuItem : DtmAnyItem {
    std::string path;               // the directory; a scrolled menu gives the item another one
    unsigned flags = 0;             // DTM_HIDE_DOT or 0, handed on to the subdirectories
    DtmAction action = nullptr;     // what choosing it calls
    QPointer<DtmMenu> submenu;      // null until it is needed, and when there is no subdirectory
    QAction *placeholder = nullptr; // "Scanning..." in the submenu until the scan ends
    std::shared_ptr<DtmScan> scan;  // of the submenu or of the item's own examination, once begun
    QList<DirMenuItem *> items;     // the subdirectories, as many as the submenu shows at a time

    explicit DirMenuItem(QObject *owner) : DtmAnyItem(owner) {}
    ~DirMenuItem() override;
    void arm() override;
    void choose() override;
};

// Adds an item for the directory to the end of the menu: the label with "/" behind it unless it
// ends in one. With DTM_EXAMINE a worker finds out at once whether it shows an arrow; until then it
// is grey. Null when there is no room for it.
DirMenuItem *dtm_add_item(QMenu *menu, const std::string &path, std::string_view label,
                          unsigned flags, DtmAction action);

// The same before another item (null: at the end), for the hotlist's menu; the path is the label.
void dtm_insert_item(QMenu *menu, QAction *before, const std::string &path, unsigned flags,
                     int (*action)(const char *path));

// Whether a worker of the item is under way.
bool dtm_is_scanning(const DirMenuItem &item);

// Tells the user of a failure.
void dtm_errinfo(const char *title, const QString &text);

} // namespace tav

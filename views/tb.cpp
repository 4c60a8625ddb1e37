// The toolbars: their buttons, and which bars are shown. The boxes are tb_path.cpp and
// tb_filter.cpp.
#include "views/tb.h"

#include "app/config.h"
#include "model/dir.h"
#include "model/es.h"
#include "platform/ini.h"
#include "platform/replace_file.h"
#include "platform/res.h"
#include "platform/w.h"
#include "views/fl.h"
#include "views/fl_back.h"
#include "views/gm.h"
#include "views/hm.h"
#include "views/tb_boxes.h"
#include "views/tree.h"
#include "views/vm.h"

#include <QToolBar>
#include <QToolButton>
#include <cstdlib>

namespace tav {

TbHooks gTbHooks;

namespace {

using Handler = int (*)(QWidget *widget);

constexpr size_t CONF_LIMIT = 1024 * 1024; // bytes of a tav.conf that is believed

constexpr const char *sBars[] = {"nav_tb",     "clip_tb", "misc_tb",
                                 "hotlist_tb", "path_tb", "filter_tb"};

// One button.
struct Button {
    const char *bar;
    const char *name;
    const char *image;
    const char *label;
    const char *key;            // as the menus show it, or null
    Handler handler;            // of this floor, or null:
    Handler TbHooks::*upstairs; // of a floor above
    bool (*when)();             // whether it can do anything now; null: always
};

std::string sConfDir; // where tav.conf is; empty: nowhere

int refresh(QWidget *)
{
    fl_refresh();
    return W_CONTINUE;
}

bool can_go_back() { return fl_get_back_count() != 0; }

bool can_go_forward() { return fl_get_forward_count() != 0; }

bool can_go_up() { return gDir.path != "/"; }

bool can_go_home()
{
    const char *home = getenv("HOME");
    return home && gDir.path != home;
}

bool can_add() { return gDir.has_path && !tree_lookup(gDir.path.c_str()); }

bool any_selected() { return gDir.nselected > 0; }

// clang-format off
constexpr Button sButtons[] = {
    {"nav_tb", "tb_back", "back", "Back", "Alt-<-", gm_back, nullptr, can_go_back},
    {"nav_tb", "tb_forward", "forward", "Forward", "Alt-->", gm_forward, nullptr, can_go_forward},
    {"nav_tb", "tb_up", "up", "Up One Level", "Bksp", gm_up, nullptr, can_go_up},
    {"nav_tb", "tb_home", "home", "Home", "F6", gm_home, nullptr, can_go_home},
    {"nav_tb", "tb_refresh", "refresh", "Refresh", "F5", refresh, nullptr, nullptr},
    {"clip_tb", "tb_cut", "cut", "Cut", "Ctrl-X", nullptr, &TbHooks::cut, any_selected},
    {"clip_tb", "tb_copy", "copy", "Copy", "Ctrl-C", nullptr, &TbHooks::copy, any_selected},
    {"clip_tb", "tb_paste", "paste", "Paste", "Ctrl-V", nullptr, &TbHooks::paste, nullptr},
    {"misc_tb", "tb_new_folder", "new_folder", "New Folder", "F4", nullptr, &TbHooks::new_folder, nullptr},
    {"misc_tb", "tb_properties", "properties", "Properties", "F9", nullptr, &TbHooks::properties, any_selected},
    {"misc_tb", "tb_terminal", "terminal", "Terminal", "Ctrl-T", nullptr, &TbHooks::terminal, nullptr},
    {"misc_tb", "tb_delete", "delete", "Delete", "Del", nullptr, &TbHooks::erase, any_selected},
    {"hotlist_tb", "tb_hotlist", "hotlist", "Show Hotlist", nullptr, vm_hotlist_toggle, nullptr, nullptr},
    {"hotlist_tb", "tb_add", "add", "Add Current Directory", "Ctrl-D", hm_add, nullptr, can_add},
};
// clang-format on

Handler handler_of(const Button &row)
{
    return row.upstairs ? gTbHooks.*row.upstairs : row.handler;
}

void add_button(QToolBar *bar, const Button &row)
{
    auto *button = new QToolButton(bar);
    button->setObjectName(QLatin1String(row.name));
    button->setIcon(res_image(row.image));
    button->setAutoRaise(true);
    button->setAccessibleName(QLatin1String(row.label));
    QString tip = QLatin1String(row.label);
    if (row.key)
        tip += QStringLiteral(" (%1)").arg(QLatin1String(row.key));
    button->setToolTip(tip.toHtmlEscaped());
    button->setFocusPolicy(Qt::TabFocus);
    const Handler handler = handler_of(row);
    button->setEnabled(handler);
    if (handler)
        QObject::connect(button, &QToolButton::clicked, button,
                         [button, handler] { handler(button); });
    bar->addWidget(button);
}

std::string conf_path()
{
    std::string path;
    es_construct_fullpath(path, sConfDir.c_str(), "tav.conf");
    return path;
}

} // namespace

void tb_setup()
{
    for (const char *name : sBars)
        if (auto *bar = w_find<QToolBar>(name)) {
            bar->setMovable(false);
            QObject::connect(bar->toggleViewAction(), &QAction::triggered, bar,
                             [] { tb_save_shown(); });
        }
    for (const Button &row : sButtons)
        if (auto *bar = w_find<QToolBar>(row.bar))
            add_button(bar, row);
    if (auto *button = w_find<QToolButton>("tb_hotlist")) {
        button->setCheckable(true);
        button->setChecked(gConfig->hotlist_shown);
    }
    gm_watch_buttons(gBase);
    tb_path_setup(w_find<QToolBar>("path_tb"));
    tb_filter_setup(w_find<QToolBar>("filter_tb"));
}

void tb_load_shown(const char *dir)
{
    sConfDir = dir ? dir : "";
    if (!dir)
        return;
    std::string text;
    replace_file_read(conf_path().c_str(), text, CONF_LIMIT);
    for (const char *name : sBars)
        if (auto *bar = w_find<QToolBar>(name))
            bar->setVisible(ini_get(text, "toolbars", name) != "0");
}

int tb_save_shown()
{
    if (sConfDir.empty())
        return -1;
    std::string text;
    replace_file_read(conf_path().c_str(), text, CONF_LIMIT);
    for (const char *name : sBars)
        if (auto *bar = w_find<QToolBar>(name))
            ini_set(text, "toolbars", name, bar->isHidden() ? "0" : "1");
    return replace_file_write(conf_path().c_str(), text);
}

void tb_update()
{
    for (const Button &row : sButtons)
        if (QWidget *button = row.when ? w_find(row.name) : nullptr)
            button->setEnabled(handler_of(row) && row.when());
}

} // namespace tav

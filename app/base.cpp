// The main window: set-up, notification, end. What lower floors need of higher ones is filled in
// here.
#include "app/base.h"

#include "app/ac.h"
#include "app/cl.h"
#include "app/interp.h"
#include "app/menu.h"
#include "app/start.h"
#include "commands/clip.h"
#include "commands/dnd.h"
#include "commands/dtm.h"
#include "commands/em.h"
#include "commands/fm.h"
#include "commands/fm_dlg.h"
#include "commands/misc.h"
#include "commands/misc_ui.h"
#include "commands/transf.h"
#include "fileops/delete_dlg.h"
#include "fileops/fop.h"
#include "fileops/new_dlg.h"
#include "fileops/slot.h"
#include "platform/combo.h"
#include "platform/lengths.h"
#include "platform/shown.h"
#include "platform/w.h"
#include "platform/x11_time.h"
#include "ui_base.h"
#include "views/fl.h"
#include "views/fl_view.h"
#include "views/hm.h"
#include "views/prop.h"
#include "views/status.h"
#include "views/tb.h"
#include "views/tree.h"
#include "views/tree_hotlist.h"

#include <QAbstractSpinBox>
#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QDialog>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenuBar>
#include <cstdlib>

namespace tav {

namespace {

bool sLeft = false; // base_closing has run; once is enough

void x_show_menu(const MenuTable &table, const QPoint &global)
{
    QMenu *menu = menu_create(table, gBase, false);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->popup(global);
}

void x_show_hotlist_menu(const QPoint &global) { x_show_menu(gHotlistMenu, global); }

void x_show_list_menu(const QPoint &global) { x_show_menu(gListMenu, global); }

// Everything that a lower floor asks of a higher one.
void x_fill_hooks()
{
    gFlHooks.key = interp_key;
    gFlHooks.key_echo = interp_echo;
    gFlHooks.key_clear = interp_clear;
    gFlHooks.key_active = interp_active;
    gFlHooks.open = [] { fm_open(gBase); };
    gFlHooks.run_open = fm_run_open;
    gFlHooks.has_open = fm_has_open;
    gFlHooks.run_program = fm_run_program;
    gFlHooks.status_update = [] {
        status_bar_update();
        tb_update();
    };
    gFlHooks.history_changed = tb_update;
    gFlHooks.context_menu = x_show_list_menu;
    gFlHooks.cut_fetch = file_get_cut_files;
    gFlHooks.cut_any = [] { return file_any_cut(gDir.path); };
    gFlHooks.is_cut = file_is_cut;
    gFlHooks.drag_start = dnd_start;
    gFlHooks.drop_is_files = dnd_is_files;
    gFlHooks.drop_accepts = dnd_accepts;
    gFlHooks.drop = dnd_drop;
    gFopHooks.get_cut_files = file_get_cut_files;
    gFopHooks.uncut = file_uncut;
    gFopHooks.one_dir_packed = [] { return one_dir_packed; };
    gHmHooks.add_directory = dtm_insert_item;
    clip_set_notify(em_marks_changed);
    gTbHooks.terminal = fm_open_pterm;
    gSlotHooks.exit = [] { QCoreApplication::exit(EXIT_SUCCESS); }; // quit() would ask every window
    gTbHooks.cut = em_cut;
    gTbHooks.copy = em_copy;
    gTbHooks.paste = em_paste;
    gTbHooks.erase = em_delete;
    gTbHooks.new_folder = fm_new_folder;
    gTbHooks.properties = fm_inspect;
    gDeleteHooks.walktree = misc_walktree;
    gDeleteHooks.block = misc_block;
    gDeleteHooks.refresh = fl_refresh;
    gDeleteHooks.go_to = [](const char *name) { fl_goto(name, 0, FL_EXACT); };
    gNewHooks.refresh = fl_refresh;
    gNewHooks.show = fm_show_new;
    gPropHooks.filetype = fm_filetype;
    gTreeHooks.context_menu = x_show_hotlist_menu;
}

void x_show(const Options &options)
{
    if (options.width > 0 || options.height > 0)
        gBase->resize(options.width > 0 ? options.width : gBase->width(),
                      options.height > 0 ? options.height : gBase->height());
    if (options.has_x || options.has_y)
        gBase->move(options.has_x ? options.x : gBase->x(), options.has_y ? options.y : gBase->y());
    if (options.state == 'i')
        gBase->showMinimized();
    else if (options.state == 'm')
        gBase->showMaximized();
    else
        gBase->show();
}

// Shows the history's first text, which the strict selection of a single item would leave out.
void x_fill_box(const char *name, ClHistory *history)
{
    auto *box = w_find<QComboBox>(name);
    const ClBox view = combo_box(box);
    cl_apply(history, view);
    cl_text_select(view, 1);
    if (const char *first = cl_get(history, 1))
        box->setEditText(shown_text(first));
}

void x_setup_before()
{
    tb_setup();
    tb_load_shown(gConfigPath);
    x_fill_box("tb_filespec", gSpecList);
    fl_setspec(cl_get(gSpecList, 1));
    w_find("hotlist_panel")->setMinimumSize(lengths_to_pixels(96), lengths_to_pixels(100));
    w_find("filelist_panel")->setMinimumSize(lengths_to_pixels(120), lengths_to_pixels(100));
    tree_setup();
    tree_load(tree_view(), gConfigPath, "hotlist.001");
    x_fill_box("tb_curpath", gPathList);
    fl_setup();
    fl_set_notify_cb(base_update);
    base_set_divider_metrics(*gConfig);
    init_actions();
    init_kb_defaults();
    ac_link_widget(fl_view(), "filelist");
}

// The window goes now, or hides until the last job is done.
void x_close_window()
{
    if (sLeft)
        return;
    sLeft = true;
    base_closing();
    gBase->hide();
}

// Whether a dialog or a message has the keyboard: a refresh below it must not take that away.
bool x_is_below_dialog()
{
    const auto *dialog = qobject_cast<const QDialog *>(QApplication::activeWindow());
    return dialog != nullptr && dialog->isVisible();
}

bool x_is_text_field(const QObject *object)
{
    const auto *box = qobject_cast<const QComboBox *>(object); // has the focus for its text
    return (box != nullptr && box->isEditable()) ||
           qobject_cast<const QLineEdit *>(object) != nullptr ||
           qobject_cast<const QAbstractSpinBox *>(object) != nullptr;
}

} // namespace

BaseWindow::BaseWindow() { qApp->installEventFilter(this); }

void BaseWindow::closeEvent(QCloseEvent *event)
{
    event->accept();
    base_leave();
}

bool BaseWindow::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::ShortcutOverride && x_is_text_field(watched)) {
        const int key = static_cast<QKeyEvent *>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter)
            event->accept();
    }
    return QMainWindow::eventFilter(watched, event);
}

void base_update()
{
    status_bar_update();
    tb_curpath_set_text(gDir.path.c_str());
    tb_update();
    const QString shown = gDir.has_path ? shown_text(gDir.path) + QStringLiteral(" - ") : QString();
    gBase->setWindowTitle(shown + QStringLiteral("TAV"));
    const QWidget *focus = QApplication::focusWidget();
    if (!x_is_below_dialog() && !(fl_is_outside() && x_is_text_field(focus)))
        w_find("filelist")->setFocus(Qt::OtherFocusReason); // not the window: it may not be in use
}

void base_create(const Options &options)
{
    sLeft = false;
    base_window_closed = false;
    gBase = new BaseWindow;
    Ui::base form;
    form.setupUi(static_cast<QMainWindow *>(gBase));
    menu_build_bar(form.menubar, gMenuBar, gBase);
    x_fill_hooks();
    misc_ui_setup();
    base_setup(BaseReason::before_realize);
    base_opening();
    x_show(options);
    base_setup(BaseReason::after_realize);
    x11_time_guard();
    clip_setup();
}

int base_setup(BaseReason reason)
{
    if (reason == BaseReason::before_realize)
        x_setup_before();
    else if (fl_setpath(gStartPath.c_str()) != 0)
        base_update(); // nothing is shown: the buttons and the keyboard follow all the same
    show_sort_method();
    return W_CONTINUE;
}

int base_opening()
{
    base_set_window_metrics(*gConfig);
    return W_CONTINUE;
}

int base_closing()
{
    if (gConfigPath == nullptr)
        return W_CONTINUE;
    if (gConfig->save_on_exit != 0) {
        base_get_window_metrics(*gConfig);
        base_get_divider_metrics(*gConfig);
        init_save_config(gConfig, gConfigPath, "config.003");
    }
    init_save_cboxs(gConfigPath);
    init_destroy_cboxs();
    tree_save(tree_view(), gConfigPath, "hotlist.001");
    base_window_closed = true;
    return W_CONTINUE;
}

bool base_is_gone() { return sLeft; }

void base_leave()
{
    x_close_window();
    if (slot_count() > 0)
        slot_finish_all();
    else
        gSlotHooks.exit();
}

void base_terminate()
{
    x_close_window();
    slot_terminate_all();
}

} // namespace tav

// What the tests of tree, hotlist, toolbars and status bar share: a window with those parts under
// their names, a home and a directory of its own, and everything global put back afterwards.
#pragma once

#include "app/cl.h"
#include "app/config.h"
#include "model/dir.h"
#include "model/es.h"
#include "platform/combo.h"
#include "platform/ui_gate.h"
#include "platform/w.h"
#include "support/boxes.h"
#include "testdir.h"
#include "views/fl.h"
#include "views/fl_back.h"
#include "views/fl_view.h"
#include "views/gm.h"
#include "views/history.h"
#include "views/hm.h"
#include "views/menu_item.h"
#include "views/status.h"
#include "views/tb.h"
#include "views/tb_box.h"
#include "views/tree.h"
#include "views/tree_go.h"
#include "views/tree_level.h"
#include "views/vm.h"

#include <QApplication>
#include <QLabel>
#include <QMainWindow>
#include <QMenu>
#include <QSignalSpy>
#include <QSplitter>
#include <QTest>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>
#include <memory>

namespace tav {

inline int gWaysPressed; // buttons of higher floors that were pressed
inline int ways_pressed(QWidget *) { return ++gWaysPressed, W_CONTINUE; }

// As the main window's own notification: everything follows the list.
inline void ways_notify()
{
    status_bar_update();
    tb_curpath_set_text(gDir.path.c_str());
    tb_update();
}

struct WaysWindow {
    TestHome home;
    TestDir dir;
    QMainWindow window;
    QSplitter *workspace;
    QWidget *panel;
    TreeView *tree;
    FlView *list;
    QLabel *status1, *status2;

    WaysWindow()
    {
        config_set_defaults(*gConfig);
        gOptions = ~0u & ~0x400u;
        gPathList = cl_read(nullptr, nullptr);
        gSpecList = cl_read(nullptr, nullptr);
        gBase = &window;
        make_parts();
        gWaysPressed = 0;
        gTbHooks = {ways_pressed, ways_pressed, ways_pressed, ways_pressed,
                    ways_pressed, ways_pressed, ways_pressed};
        gFlHooks = {};
        gFlHooks.status_update = ways_notify;
        gFlHooks.history_changed = tb_update;
        gDirHooks = {};
        gDir.filespec = "*";
        tb_setup();
        tree_set_paths({});
        tree_setup();
        fl_setup();
        fl_set_notify_cb(ways_notify);
        window.resize(700, 420);
        window.show();
        window.activateWindow();
        (void)QTest::qWaitForWindowActive(&window);
        fl_setpath(dir.path().c_str());
        list->setFocus();
    }
    ~WaysWindow()
    {
        fl_set_notify_cb(nullptr);
        delete window.takeCentralWidget();
        gBase = nullptr;
        gTbHooks = {};
        gHmHooks = {};
        gTreeHooks = {};
        gFlHooks = {};
        gTreeRows = {};
        dir_release(gDir);
        gDir.path.clear();
        gDir.has_path = false;
        gDir.current = DIR_PARENT;
        gDir.nselected = gDir.nseldirs = gDir.count = 0;
        x_history_clear(backward_history);
        x_history_clear(forward_history);
        cl_destroy(gPathList);
        cl_destroy(gSpecList);
        gPathList = gSpecList = nullptr;
    }
    WaysWindow(const WaysWindow &) = delete;
    WaysWindow &operator=(const WaysWindow &) = delete;

    template <typename T = QWidget>
    T *find(const char *name)
    {
        return w_find<T>(name);
    }
    QToolButton *button(const char *name) { return w_find<QToolButton>(name); }
    TbBox *path() { return w_find<TbBox>("tb_curpath"); }
    TbBox *filter() { return w_find<TbBox>("tb_filespec"); }

    // Fills the hotlist and waits until every row knows what it is.
    void hotlist(const std::vector<std::string> &paths)
    {
        hotlist_unsettled(paths);
        settle();
    }
    void hotlist_unsettled(const std::vector<std::string> &paths)
    {
        tree_set_paths(paths);
        tree_build(tree);
    }
    void settle()
    {
        QVERIFY(QTest::qWaitFor([this] { return is_settled(nullptr); }, 10000));
    }
    // Expands a row and waits for its level.
    void expand(TreeItem *item)
    {
        item->setExpanded(true);
        settle();
    }
    bool is_settled(TreeItem *item)
    {
        QTreeWidgetItem *level = item ? item : tree->invisibleRootItem();
        if (item ? item->probe || item->level : tree_level_is_reading())
            return false;
        for (int i = 0; i < level->childCount(); ++i)
            if (!is_settled(static_cast<TreeItem *>(level->child(i))))
                return false;
        return true;
    }
    // A row that has to be there.
    [[gnu::noinline, gnu::returns_nonnull]] TreeItem *row(int index,
                                                          const TreeItem *parent = nullptr) const
    {
        const QTreeWidgetItem *level = parent ? parent : tree->invisibleRootItem();
        if (index < 0 || index >= level->childCount())
            qFatal("the tree has no such row");
        return static_cast<TreeItem *>(level->child(index));
    }
    // The row of that label in a level that has it.
    TreeItem *row_named(const char *name, const TreeItem *parent = nullptr) const
    {
        int index = 0;
        while (row(index, parent)->name != name)
            ++index;
        return row(index, parent);
    }
    // Labels of a level, joined by blanks.
    std::string labels(TreeItem *parent = nullptr) const
    {
        QTreeWidgetItem *level = parent ? parent : tree->invisibleRootItem();
        std::string all;
        for (int i = 0; i < level->childCount(); ++i)
            all += (i ? " " : "") + row(i, parent)->name;
        return all;
    }
    QPoint at(TreeItem *item, double part = 0.5) const // on the row's text, part of the way down
    {
        const QRect rect = tree->visualItemRect(item);
        return {rect.left() + 30, rect.top() + static_cast<int>(rect.height() * part)};
    }
    // A click; also what it leads to, when a busy machine takes its time.
    void click(TreeItem *item)
    {
        click_only(item);
        QVERIFY(QTest::qWaitFor([] { return !tree_go_is_waiting(); }, 10000));
    }
    void click_only(TreeItem *item)
    {
        QTest::mouseClick(tree->viewport(), Qt::LeftButton, {}, at(item));
    }
    void double_click(TreeItem *item)
    {
        click(item);
        QTest::mouseDClick(tree->viewport(), Qt::LeftButton, {}, at(item));
        settle();
    }
    QString left() const { return status1->text(); }
    QString right() const { return status2->text(); }

private:
    void make_parts()
    {
        for (const char *name :
             {"nav_tb", "clip_tb", "misc_tb", "hotlist_tb", "path_tb", "filter_tb"}) {
            QToolBar *bar = window.addToolBar(QLatin1String(name));
            bar->setObjectName(QLatin1String(name));
        }
        auto *pane = new QWidget;
        auto *layout = new QVBoxLayout(pane);
        workspace = new QSplitter;
        panel = new QWidget;
        panel->setObjectName(QStringLiteral("hotlist_panel"));
        tree = new TreeView;
        tree->setObjectName(QStringLiteral("tree"));
        (new QVBoxLayout(panel))->addWidget(tree);
        list = new FlView;
        list->setObjectName(QStringLiteral("filelist"));
        workspace->addWidget(panel);
        workspace->addWidget(list);
        status1 = new QLabel;
        status2 = new QLabel;
        status1->setObjectName(QStringLiteral("status1"));
        status2->setObjectName(QStringLiteral("status2"));
        layout->addWidget(workspace);
        layout->addWidget(status1);
        layout->addWidget(status2);
        window.setCentralWidget(pane);
    }
};

} // namespace tav

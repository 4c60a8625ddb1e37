// What the tests of the file list share: a window as small as the list needs, a directory of its
// own, the hooks with what they were told, and message boxes that answer themselves.
#pragma once

#include "app/config.h"
#include "model/dir.h"
#include "platform/ui_gate.h"
#include "platform/w.h"
#include "testdir.h"
#include "views/fl.h"
#include "views/fl_header.h"
#include "views/fl_select.h"
#include "views/fl_sort.h"
#include "views/fl_view.h"
#include "views/history.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QScrollBar>
#include <QTest>
#include <QTimer>
#include <QVBoxLayout>
#include <memory>
#include <string>
#include <vector>

namespace tav {

// What the hooks were told since the last reset.
struct FlHeard {
    int key_answer = 0;    // what the key hook answers
    bool typing = false;   // what key_active answers
    std::vector<int> keys; // keys given to the interpreter
    QString typed;         // and their texts
    int echoes = 0, clears = 0, opens = 0, menus = 0, drags = 0, statuses = 0, notifies = 0;
    int cut_fetches = 0;
    std::vector<std::string> run; // names of entries whose associations ran
    std::vector<std::string> programs;
    std::string associated; // the name that associations match
    std::string cut;        // the name that is cut
    QPoint menu_at;
};
inline FlHeard gHeard;

inline void fl_test_hooks()
{
    gHeard = {};
    gFlHooks = {};
    gFlHooks.key = [](const QKeyEvent &event) {
        gHeard.keys.push_back(event.key());
        gHeard.typed += event.text();
        return gHeard.key_answer;
    };
    gFlHooks.key_echo = [] { ++gHeard.echoes; };
    gFlHooks.key_clear = [] { ++gHeard.clears; };
    gFlHooks.key_active = [] { return gHeard.typing; };
    gFlHooks.open = [] { ++gHeard.opens; };
    gFlHooks.has_open = [](int index) {
        return gHeard.associated == gDir.entries[static_cast<size_t>(index)]->name;
    };
    gFlHooks.run_open = [](int index) {
        gHeard.run.emplace_back(gDir.entries[static_cast<size_t>(index)]->name);
    };
    gFlHooks.run_program = [](const std::string &path) {
        gHeard.programs.push_back(path);
        return 0;
    };
    gFlHooks.context_menu = [](const QPoint &global) {
        ++gHeard.menus;
        gHeard.menu_at = global;
    };
    gFlHooks.drag_start = [] { ++gHeard.drags; };
    gFlHooks.cut_fetch = [] { ++gHeard.cut_fetches; };
    gFlHooks.is_cut = [](const std::string &, std::string_view name) { return name == gHeard.cut; };
    gFlHooks.status_update = [] { ++gHeard.statuses; };
}

// The window: status bar texts, a text field, the list. Made anew for each test.
struct FlWindow {
    QWidget window;
    FlView *list;
    QLabel *status1, *status2;
    QLineEdit *field;

    FlWindow()
    {
        auto *layout = new QVBoxLayout(&window);
        list = new FlView(&window);
        field = new QLineEdit(&window);
        status1 = new QLabel(&window);
        status2 = new QLabel(&window);
        status1->setObjectName(QStringLiteral("status1"));
        status2->setObjectName(QStringLiteral("status2"));
        for (QWidget *widget : std::initializer_list<QWidget *>{list, field, status1, status2})
            layout->addWidget(widget);
        gBase = &window;
        fl_test_hooks();
        gDirHooks = {};
        gDir.filespec = "*";
        fl_setup();
        fl_set_notify_cb([] { ++gHeard.notifies; });
        fl_sort_reset();
        window.resize(700, 420);
        window.show();
        window.activateWindow();
        list->setFocus();
        (void)QTest::qWaitForWindowActive(&window);
    }
    ~FlWindow()
    {
        fl_set_notify_cb(nullptr);
        gBase = nullptr;
        dir_release(gDir);
        gDir.path.clear();
        gDir.has_path = false;
        gDir.filespec = "*";
        gDir.current = DIR_PARENT;
        gDir.nselected = gDir.nseldirs = gDir.count = 0;
        x_history_clear(backward_history);
        x_history_clear(forward_history);
        gFlHooks = {};
        gDirHooks = {};
    }
    FlWindow(const FlWindow &) = delete;
    FlWindow &operator=(const FlWindow &) = delete;

    QPoint at(int index) const // where a row can be clicked
    {
        return list->row_rect(fl_row_of_index(index)).topLeft() +
               QPoint(40, list->row_height() / 2);
    }
    QPoint empty() const // below the last row
    {
        return {40, list->row_rect(fl_row_count()).top() + list->row_height() / 2};
    }
    void click(int index, Qt::KeyboardModifiers modifiers = Qt::NoModifier,
               Qt::MouseButton button = Qt::LeftButton) const
    {
        QTest::mouseClick(list->viewport(), button, modifiers, at(index));
    }
    void key(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const
    {
        QTest::keyClick(list, static_cast<Qt::Key>(key), modifiers);
    }
    // Presses, moves through the points with the button held, releases at the last one.
    void pull(const std::vector<QPoint> &points,
              Qt::KeyboardModifiers modifiers = Qt::NoModifier) const
    {
        QTest::mousePress(list->viewport(), Qt::LeftButton, modifiers, points.front());
        for (const QPoint &point : points) {
            const QPointF global = list->viewport()->mapToGlobal(point);
            QMouseEvent move(QEvent::MouseMove, point, global, Qt::NoButton, Qt::LeftButton,
                             modifiers);
            QApplication::sendEvent(list->viewport(), &move);
        }
        QTest::mouseRelease(list->viewport(), Qt::LeftButton, modifiers, points.back());
    }
};

inline std::string fl_test_name(int index)
{
    return index >= 0 && index < gDir.count ? gDir.entries[static_cast<size_t>(index)]->name : "";
}

// Names shown, in order, joined by blanks.
inline std::string fl_test_names()
{
    std::string names;
    for (int i = 0; i < gDir.count; ++i)
        names += (i ? " " : "") + fl_test_name(i);
    return names;
}

// Names selected, in order, joined by blanks. Checks the counts on the way.
inline std::string fl_test_selected()
{
    std::string names;
    int count = 0, directories = 0;
    for (int i = 0; i < gDir.count; ++i) {
        const DirEntry &entry = *gDir.entries[static_cast<size_t>(i)];
        if (!(entry.flags & DIR_SELECTED))
            continue;
        names += (count++ ? " " : "") + std::string(entry.name);
        directories += dir_is_directory(entry);
    }
    if (count != gDir.nselected || directories != gDir.nseldirs)
        return "the counts are wrong";
    return names;
}

// Answers the next message box with its only button and keeps what it said: "title: text".
struct FlBox {
    QString said;
    QTimer timer;

    FlBox()
    {
        QObject::connect(&timer, &QTimer::timeout, [this] {
            for (QWidget *widget : QApplication::topLevelWidgets()) {
                auto *box = qobject_cast<QMessageBox *>(widget);
                if (!box || !box->isVisible())
                    continue;
                said += box->windowTitle() + QStringLiteral(": ") + box->accessibleDescription();
                box->buttons().constFirst()->click();
                return;
            }
        });
        timer.start(1);
    }
    std::string text() const { return said.toStdString(); }
};

} // namespace tav

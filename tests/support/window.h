// The main window as a person has it, in a home and a directory of its own, with stand-ins for the
// programs that are started first in PATH.
#pragma once

#include "app/base.h"
#include "app/init.h"
#include "model/dir.h"
#include "platform/child.h"
#include "platform/ui_gate.h"
#include "platform/w.h"
#include "support/write_args.h"
#include "testdir.h"
#include "views/fl.h"
#include "views/fl_view.h"

#include <QApplication>
#include <QLabel>
#include <QTest>
#include <memory>

namespace tav::test {

class Window {
public:
    Window()
    {
        dir.dir(".ph");
        dir.dir("bin");
        dir.dir("shown");
        m_home = std::make_unique<TestEnv>("HOME", dir.path().c_str());
        m_path = std::make_unique<TestEnv>("PATH", (dir.at("bin") + ":/usr/bin:/bin").c_str());
        m_out = std::make_unique<TestEnv>("ARGS_OUT", dir.at("out").c_str());
    }

    ~Window() { close(); }

    // Starts as the program does.
    void open()
    {
        ui_gate_open();
        const std::string shown = dir.at("shown");
        const char *words[] = {"tav", shown.c_str()};
        tav::init(2, words);
        base_create({});
        QVERIFY(QTest::qWaitForWindowExposed(gBase));
        QTRY_COMPARE(QApplication::focusWidget(), static_cast<QWidget *>(fl_view()));
    }

    // Leaving for good would end every later loop that waits for an answer.
    static void close()
    {
        if (gBase == nullptr)
            return;
        base_closing();
        delete gBase;
        gBase = nullptr;
    }

    // A program of that name writes its arguments down.
    void stand_in(const char *name) { dir.link("bin/" + std::string(name), write_args_path()); }

    void script(const char *name, const std::string &text)
    {
        dir.text("bin/" + std::string(name), "#!/bin/sh\n" + text + "\n", 0755);
    }

    // The arguments that the last stand-in was given, between "|"; waits for them.
    QString received()
    {
        if (!QTest::qWaitFor([this] { return dir.exists("out"); }, 20'000))
            return QStringLiteral("nothing");
        std::string bytes = dir.read("out");
        dir.remove("out");
        std::replace(bytes.begin(), bytes.end(), '\0', '|');
        return QString::fromStdString(bytes);
    }

    // Whether nothing was started, once everything has ended.
    bool nothing_received()
    {
        const bool ended = QTest::qWaitFor([] { return child_reap() == 0; }, 20'000);
        return ended && !dir.exists("out");
    }

    static QString status() { return w_find<QLabel>("status1")->text(); }

    static int index(const char *name)
    {
        for (int i = 0; i < gDir.count; i++) {
            if (std::string_view(name) == gDir.entries[static_cast<size_t>(i)]->name)
                return i;
        }
        return DIR_NONE;
    }

    // Selects these and nothing else, the cursor on the first.
    static void select(std::initializer_list<const char *> names)
    {
        fl_unselect_all(nullptr);
        for (const char *name : names)
            fl_select_index(index(name));
        fl_goto_index(names.size() ? index(*names.begin()) : DIR_NONE);
    }

    TestDir dir;

private:
    std::unique_ptr<TestEnv> m_home, m_path, m_out;
};

} // namespace tav::test

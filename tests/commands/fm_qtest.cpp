// The File menu: what is dimmed, and what its items start.
#include "commands/fm.h"

#include "commands/as.h"
#include "commands/ow_dlg.h"
#include "support/window.h"

#include <QDialog>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <algorithm>
#include <cstring>
#include <sys/wait.h>

using namespace tav;
using tav::test::Window;

namespace {

QStringList x_names(std::initializer_list<const char *> names)
{
    QStringList out;
    for (const char *name : names)
        out += QLatin1String(name);
    return out;
}

} // namespace

class FmTest : public QObject {
    Q_OBJECT

    std::unique_ptr<Window> m_window;

    static QMenu *menu() { return gBase->findChild<QMenu *>(QStringLiteral("file_menu")); }

    // The names of the dimmed items of the menu as it opens.
    static QStringList dimmed()
    {
        fm_setup(menu());
        QStringList names;
        for (const QAction *action : menu()->actions()) {
            if (!action->isSeparator() && !action->isEnabled())
                names += action->objectName().mid(3);
        }
        names.removeOne(QStringLiteral("print_directory"));
        return names;
    }

    static QDialog *dialog() { return gBase->findChild<QDialog *>(QStringLiteral("open_with")); }

    static void key(Qt::Key key, Qt::KeyboardModifiers modifiers)
    {
        QTest::keyClick(fl_view(), key, modifiers);
    }

private Q_SLOTS:
    void init()
    {
        m_window = std::make_unique<Window>();
        for (const char *name : {"shown/a.c", "shown/b.c", "shown/c.core", "shown/none.xyz"})
            m_window->dir.file(name);
        m_window->dir.link("shown/program.run", test::write_args_path());
        m_window->dir.dir("shown/docs");
        m_window->dir.dir("shown/more");
        for (const char *name : {"ped", "lp", "pterm", "tav", "show"})
            m_window->stand_in(name);
        m_window->open();
    }
    void cleanup() { m_window.reset(); }

    void withNothingSelectedOnlyWhatNeedsNoFileIsLeft()
    {
        Window::select({});
        const QStringList names = dimmed();
        for (const char *name : {"open", "open_another", "open_with", "edit", "view", "print"})
            QVERIFY2(names.contains(QLatin1String(name)), name);
        QVERIFY(!names.contains(QStringLiteral("open_pterm")));
        QVERIFY(!names.contains(QStringLiteral("refresh")));
    }

    void aDirectoryDimsWhatIsForFiles()
    {
        Window::select({"docs", "a.c"});
        QCOMPARE(dimmed(), (x_names({"view", "edit", "open_with", "print"})));
    }

    void filesDimOpenInWindowAndWhatTheirAssociationsLack()
    {
        Window::select({"a.c"});
        QCOMPARE(dimmed(), x_names({"open_another"}));
        Window::select({"a.c", "c.core"});
        QCOMPARE(dimmed(), (x_names({"open_another", "view", "edit"})));
        Window::select({"a.c", "none.xyz"});
        QCOMPARE(dimmed(), (x_names({"open", "open_another", "view", "edit"})));
    }

    void printDirectoryIsAlwaysDimmed()
    {
        Window::select({"a.c"});
        fm_setup(menu());
        for (const QAction *action : menu()->actions()) {
            if (action->objectName() == QLatin1String("fm_print_directory"))
                QVERIFY(!action->isEnabled());
        }
    }

    void openRunsTheAssociation()
    {
        Window::select({"a.c"});
        fm_open(gBase);
        QCOMPARE(m_window->received(), QStringLiteral("a.c|"));
    }

    void openRunsEveryMatchingAssociation()
    {
        m_window->script("one", "echo 1 >>\"$HOME/ran\"");
        m_window->script("two", "echo 2 >>\"$HOME/ran\"");
        m_window->script("three", "echo 3 >>\"$HOME/ran\"");
        apat.clear();
        _add_pat("*.c", "one", "", "");
        _add_pat("*.h", "one", "", "");
        _add_pat("*", "two", "", "");
        _add_pat("a.?", " ", "", "");
        _add_pat("^A.C", "three", "", "");
        Window::select({"a.c"});
        fm_open(gBase);
        QTRY_COMPARE(m_window->dir.read("ran").size(), size_t{6});
    }

    void openWithNothingSelectedOpensTheCursorEntry()
    {
        Window::select({});
        fl_goto_index(Window::index("b.c"));
        fm_open(gBase);
        QCOMPARE(m_window->received(), QStringLiteral("b.c|"));
    }

    void twoDirectoriesAreNotOpened()
    {
        Window::select({"docs", "more"});
        fm_open(gBase);
        QCOMPARE(QString::fromStdString(gDir.path),
                 QString::fromStdString(m_window->dir.at("shown")));
    }

    void aDirectoryAmongTheSelectedIsEnteredLast()
    {
        Window::select({"docs", "b.c", "a.c"});
        fl_goto_index(Window::index("a.c"));
        m_window->dir.remove("bin/ped");
        m_window->script("ped", "echo \"$1\" in \"$PWD\" >>\"$HOME/ran\"");
        fm_open(gBase);
        QCOMPARE(QString::fromStdString(gDir.path),
                 QString::fromStdString(m_window->dir.at("shown/docs")));
        const std::string in = " in " + m_window->dir.at("shown") + "\n";
        QTRY_COMPARE(m_window->dir.read("ran").size(), ("a.c" + in + "b.c" + in).size());
    }

    void enterOnAProgramWithoutAssociationRunsIt()
    {
        Window::select({});
        fl_goto_index(Window::index("program.run"));
        key(Qt::Key_Return, Qt::NoModifier);
        QVERIFY(QTest::qWaitFor([this] { return m_window->dir.exists("out"); }));
        QCOMPARE(m_window->dir.read("out").size(), size_t{0});
    }

    void viewUsesTheFirstMatchAndNothingElse()
    {
        Window::select({"a.c"});
        fm_view(gBase);
        QCOMPARE(m_window->received(), QStringLiteral("a.c|"));
        Window::select({"none.xyz"});
        fm_view(gBase);
        Window::select({"c.core"});
        fm_view(gBase);
        QVERIFY(m_window->nothing_received());
    }

    void editFallsBackOnTheSettingsEditorAlsoByItsKey()
    {
        std::strcpy(gConfig->edit_command, "show -e @");
        Window::select({"none.xyz"});
        key(Qt::Key_E, Qt::ControlModifier);
        QCOMPARE(m_window->received(), QStringLiteral("-e|none.xyz|"));
        Window::select({"a.c"});
        key(Qt::Key_E, Qt::ControlModifier);
        QCOMPARE(m_window->received(), QStringLiteral("a.c|"));
    }

    void editLeavesDirectoriesOut()
    {
        Window::select({"docs"});
        fm_edit(gBase);
        QVERIFY(m_window->nothing_received());
    }

    void printSaysWhatWasPrinted()
    {
        Window::select({"a.c"});
        key(Qt::Key_P, Qt::ControlModifier);
        QCOMPARE(m_window->received(), QStringLiteral("a.c|"));
        QTRY_COMPARE(Window::status(), QStringLiteral("'a.c' printed"));
        Window::select({"a.c", "b.c"});
        fm_print(gBase);
        QCOMPARE(m_window->received(), QStringLiteral("a.c|b.c|"));
        QTRY_COMPARE(Window::status(), QStringLiteral("2 items printed"));
    }

    void printRefusesADirectoryWithoutAWord()
    {
        Window::select({"a.c", "docs"});
        const QString before = Window::status();
        fm_print(gBase);
        QVERIFY(m_window->nothing_received());
        QVERIFY(!Window::status().contains(QStringLiteral("printed")));
    }

    void anEmptyPrintCommandBecomesTheStandardOne()
    {
        std::strcpy(gConfig->print_command, "");
        Window::select({"a.c"});
        fm_print(gBase);
        QCOMPARE(m_window->received(), QStringLiteral("-dtext|a.c|"));
        QCOMPARE(gConfig->print_command, "lp -dtext @");
    }

    void aPrinterThatIsMissingIsSaid()
    {
        std::strcpy(gConfig->print_command, "no-such-printer @");
        Window::select({"a.c"});
        fm_print(gBase);
        QTRY_COMPARE(Window::status(), QStringLiteral("Cannot run 'no-such-printer': not found"));
    }

    void aNewWindowAndATerminal()
    {
        key(Qt::Key_N, Qt::ControlModifier);
        QCOMPARE(m_window->received(), QString());
        std::strcpy(gConfig->terminal_command, "pterm -x 'y");
        key(Qt::Key_T, Qt::ControlModifier);
        QCOMPARE(m_window->received(), QStringLiteral("-x|'y|"));
    }

    void openInWindowTakesExactlyOneDirectory()
    {
        Window::select({"docs"});
        key(Qt::Key_Return, Qt::ControlModifier);
        QCOMPARE(m_window->received(), QString::fromStdString(m_window->dir.at("shown/docs|")));
        Window::select({"docs", "more"});
        fm_open_another(gBase);
        Window::select({"a.c"});
        fm_open_another(gBase);
        QVERIFY(m_window->nothing_received());
    }

    void openInWindowWithAHostileName()
    {
        m_window->dir.dir("shown/$(touch PWNED) \"x\\");
        fl_refresh();
        Window::select({"$(touch PWNED) \"x\\"});
        fm_open_another(gBase);
        QCOMPARE(m_window->received(),
                 QString::fromStdString(m_window->dir.at("shown/$(touch PWNED) \"x\\|")));
        QVERIFY(!m_window->dir.exists("shown/PWNED"));
    }

    void openWithRunsItsCommandForEachFile()
    {
        m_window->script("each", "printf '%s,' \"$@\" >>\"$HOME/ran\"");
        Window::select({"a.c", "b.c", "docs"});
        fl_goto_index(Window::index("a.c"));
        key(Qt::Key_Return, Qt::ShiftModifier);
        QVERIFY(dialog() != nullptr);
        QCOMPARE(dialog()->windowTitle(), QStringLiteral("Open With"));
        QTest::keyClicks(dialog()->findChild<QLineEdit *>(QStringLiteral("ow_command")),
                         QStringLiteral("each -o @"));
        QTest::mouseClick(dialog()->findChild<QPushButton *>(QStringLiteral("ow_open")),
                          Qt::LeftButton);
        QTRY_VERIFY(dialog() == nullptr);
        QTRY_COMPARE(m_window->dir.read("ran").size(), std::strlen("-o,a.c,-o,b.c,"));
    }

    void openWithKeepsItsFilesWhenARefreshTakesTheSelection()
    {
        Window::select({"a.c"});
        fm_open_with(gBase);
        fl_refresh();
        QCOMPARE(gDir.nselected, 0);
        auto *field = dialog()->findChild<QLineEdit *>(QStringLiteral("ow_command"));
        QTest::keyClicks(field, QStringLiteral("show"));
        QTest::keyClick(field, Qt::Key_Return);
        QCOMPARE(m_window->received(), QStringLiteral("a.c|"));
    }

    void openWithIsCancelledByEscapeAndNeedsAFile()
    {
        Window::select({"a.c"});
        fm_open_with(gBase);
        QTest::keyClick(dialog(), Qt::Key_Escape);
        QTRY_VERIFY(dialog() == nullptr);
        Window::select({"docs"});
        fm_open_with(gBase);
        QVERIFY(dialog() == nullptr);
        Window::select({});
        fm_open_with(gBase);
        QVERIFY(dialog() == nullptr);
        QVERIFY(m_window->nothing_received());
    }

    void aProgramThatReadsItsTerminalIsStartedAgainInOne()
    {
        m_window->script("reader", "kill -TTIN $$");
        apat.clear();
        _add_pat("*.c", "reader", "", "");
        Window::select({"a.c"});
        fm_open(gBase);
        QCOMPARE(m_window->received(), QStringLiteral("sh|-c|exec reader \"a.c\"|"));
    }

    void noChildStaysBehind()
    {
        Window::select({"a.c"});
        fm_open(gBase);
        QCOMPARE(m_window->received(), QStringLiteral("a.c|"));
        // Nothing but the main loop collects it.
        QTRY_VERIFY(!m_window->dir.exists("out"));
        QTRY_COMPARE(waitpid(-1, nullptr, WNOHANG), -1);
    }
};

QTEST_MAIN(FmTest)
#include "fm_qtest.moc"

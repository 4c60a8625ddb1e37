// The two dialogs of the associations, by mouse and by key.
#include "commands/as_dlg.h"

#include "commands/as.h"
#include "commands/at_dlg.h"
#include "support/boxes.h"
#include "support/window.h"

#include <QDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeWidget>

using namespace tav;
using tav::test::Window;

class AsDlgTest : public QObject {
    Q_OBJECT

    std::unique_ptr<Window> m_window;

    static QDialog *list() { return gBase->findChild<QDialog *>(QStringLiteral("associate_dlg")); }
    static QDialog *entry()
    {
        return list() ? list()->findChild<QDialog *>(QStringLiteral("assoc_type_dlg")) : nullptr;
    }
    template <typename T>
    static T *in(QDialog *dialog, const char *name)
    {
        return dialog->findChild<T *>(QLatin1String(name));
    }
    static void press(QDialog *dialog, const char *name)
    {
        QTest::mouseClick(in<QPushButton>(dialog, name), Qt::LeftButton);
    }
    static void type(const char *field, const QString &text)
    {
        auto *edit = in<QLineEdit>(entry(), field);
        edit->clear();
        QTest::keyClicks(edit, text);
    }
    // What the row says, between "|".
    static QString row(int position)
    {
        const QTreeWidgetItem *item = in<QTreeWidget>(list(), "as_list")->topLevelItem(position);
        QStringList texts;
        for (int column = 0; item && column < 4; column++)
            texts += item->text(column);
        return texts.join(u'|');
    }
    static int rows() { return in<QTreeWidget>(list(), "as_list")->topLevelItemCount(); }
    static bool enabled(const char *name) { return in<QPushButton>(list(), name)->isEnabled(); }
    std::string file() { return m_window->dir.read(".ph/tav/associate.003"); }

private Q_SLOTS:
    void init()
    {
        m_window = std::make_unique<Window>();
        m_window->dir.dir(".ph/tav");
        m_window->dir.text(".ph/tav/associate.003", "*.x\to\tv\te\n*.y\to2\n");
        m_window->open();
        as_dlg_open(gBase);
        QVERIFY(QTest::qWaitForWindowExposed(list()));
    }
    void cleanup() { m_window.reset(); }

    void itShowsTheTableWithItsFirstRowSelected()
    {
        QCOMPARE(list()->windowTitle(), QStringLiteral("Associate"));
        QCOMPARE(rows(), 2);
        QCOMPARE(row(0), QStringLiteral("*.x|o|v|e"));
        QCOMPARE(row(1), QStringLiteral("*.y|o2||"));
        QCOMPARE(atmp_sel, 1);
        QVERIFY(enabled("as_remove") && enabled("as_edit"));
        const QTreeWidgetItem *head = in<QTreeWidget>(list(), "as_list")->headerItem();
        QCOMPARE(head->text(0) + head->text(1) + head->text(2) + head->text(3),
                 QStringLiteral("PatternOpenViewEdit"));
    }

    void removingTheLastRowDimsRemoveAndEdit()
    {
        press(list(), "as_remove");
        QCOMPARE(rows(), 1);
        QCOMPARE(row(0), QStringLiteral("*.y|o2||"));
        QCOMPARE(atmp_sel, 1);
        press(list(), "as_remove");
        QCOMPARE(rows(), 0);
        QCOMPARE(atmp_sel, 0);
        QVERIFY(!enabled("as_remove") && !enabled("as_edit"));
    }

    void selectingARowIsWhatEditAndRemoveMean()
    {
        auto *view = in<QTreeWidget>(list(), "as_list");
        view->setFocus();
        QTest::keyClick(view, Qt::Key_Down);
        QCOMPARE(atmp_sel, 2);
        press(list(), "as_remove");
        QCOMPARE(row(0), QStringLiteral("*.x|o|v|e"));
        QCOMPARE(rows(), 1);
    }

    void cancelLeavesEverythingAsItWas()
    {
        press(list(), "as_remove");
        press(list(), "as_cancel");
        QTRY_VERIFY(list() == nullptr);
        QCOMPARE(apat.size(), size_t{2});
        QVERIFY(atmp.empty());
        QCOMPARE(file(), std::string("*.x\to\tv\te\n*.y\to2\n"));
    }

    void escapeCancels()
    {
        press(list(), "as_remove");
        QTest::keyClick(list(), Qt::Key_Escape);
        QTRY_VERIFY(list() == nullptr);
        QCOMPARE(apat.size(), size_t{2});
        QVERIFY(atmp.empty());
    }

    void doneReplacesTheTableAndTheFile()
    {
        press(list(), "as_remove");
        press(list(), "as_done");
        QTRY_VERIFY(list() == nullptr);
        QCOMPARE(apat.size(), size_t{1});
        QCOMPARE(_get_pat_idx("a.x"), -1);
        QCOMPARE(file(), std::string(AS_HEADER) + "*.y\to2\t\t\n");
    }

    void doneWithAFileThatCannotBeWrittenKeepsTheNewRows()
    {
        m_window->dir.remove(".ph/tav");
        press(list(), "as_remove");
        press(list(), "as_done");
        QTRY_VERIFY(list() == nullptr);
        QCOMPARE(apat.size(), size_t{1});
        QVERIFY(tav::test::boxes_standing().isEmpty());
    }

    void addingAppendsARow()
    {
        press(list(), "as_add");
        QVERIFY(entry() != nullptr);
        QCOMPARE(apat_mode, AT_NEW);
        QCOMPARE(entry()->windowTitle(), QStringLiteral("New Association Type"));
        QVERIFY(wblock_is_blocked(list()));
        QCOMPARE(in<QLineEdit>(entry(), "at_pattern")->text(), QString());
        type("at_pattern", QStringLiteral("*.z"));
        type("at_command", QStringLiteral("show @"));
        type("at_edit_cmd", QStringLiteral("ped"));
        QTest::keyClick(in<QLineEdit>(entry(), "at_edit_cmd"), Qt::Key_Return);
        QTRY_VERIFY(entry() == nullptr);
        QVERIFY(!wblock_is_blocked(list()));
        QCOMPARE(row(2), QStringLiteral("*.z|show @||ped"));
        QCOMPARE(atmp_sel, 1);
    }

    void editingReplacesTheSelectedRow()
    {
        press(list(), "as_edit");
        QCOMPARE(apat_mode, AT_EDIT);
        QCOMPARE(in<QLineEdit>(entry(), "at_pattern")->text(), QStringLiteral("*.x"));
        QCOMPARE(in<QLineEdit>(entry(), "at_command")->text(), QStringLiteral("o"));
        QCOMPARE(in<QLineEdit>(entry(), "at_view_cmd")->text(), QStringLiteral("v"));
        QCOMPARE(in<QLineEdit>(entry(), "at_edit_cmd")->text(), QStringLiteral("e"));
        type("at_view_cmd", QStringLiteral("new"));
        press(entry(), "at_done");
        QTRY_VERIFY(entry() == nullptr);
        QCOMPARE(row(0), QStringLiteral("*.x|o|new|e"));
        QCOMPARE(rows(), 2);
    }

    void cancellingTheEntryChangesNothingAndUnblocksTheList()
    {
        press(list(), "as_edit");
        type("at_pattern", QStringLiteral("other"));
        press(entry(), "at_cancel");
        QTRY_VERIFY(entry() == nullptr);
        QVERIFY(!wblock_is_blocked(list()));
        QCOMPARE(row(0), QStringLiteral("*.x|o|v|e"));
    }

    void anEmptyPatternIsRefusedInTheWordsForTabs()
    {
        press(list(), "as_add");
        const auto seen = tav::test::boxes_answer_next(QStringLiteral("&Continue"));
        press(entry(), "at_done");
        QCOMPARE(seen->text, QStringLiteral("Pattern cannot have TABs"));
        QVERIFY(entry() != nullptr && entry()->isVisible());
    }

    void whatTheReaderWouldDieOfIsRefused_data()
    {
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<QString>("message");
        QTest::newRow("tab") << QStringLiteral("a\tb")
                             << QStringLiteral("Pattern cannot have TABs");
        QTest::newRow("comment") << QStringLiteral("#a")
                                 << QStringLiteral("Pattern cannot begin with #");
        QTest::newRow("length") << QString(1100, u'a') << QStringLiteral("Association is too long");
    }
    void whatTheReaderWouldDieOfIsRefused()
    {
        QFETCH(QString, pattern);
        QFETCH(QString, message);
        press(list(), "as_add");
        in<QLineEdit>(entry(), "at_pattern")->setText(pattern);
        const auto seen = tav::test::boxes_answer_next(QStringLiteral("&Continue"));
        press(entry(), "at_done");
        QCOMPARE(seen->text, message);
        QCOMPARE(rows(), 2);
    }

    void aTabInACommandShiftsTheLaterFields()
    {
        press(list(), "as_edit");
        in<QLineEdit>(entry(), "at_command")->setText(QStringLiteral("o\tp"));
        press(entry(), "at_done");
        QTRY_VERIFY(entry() == nullptr);
        QCOMPARE(row(0), QStringLiteral("*.x|o|p|v"));
    }

    void bytesThatCannotBeShownSurviveAnEdit()
    {
        press(list(), "as_cancel");
        QTRY_VERIFY(list() == nullptr);
        _add_pat("*.\xFF", "o\x01", "", "");
        as_dlg_open(gBase);
        atmp_sel = 3;
        at_setup_edit(list());
        type("at_edit_cmd", QStringLiteral("e"));
        press(entry(), "at_done");
        QTRY_VERIFY(entry() == nullptr);
        QCOMPARE(atmp[2], std::string("*.\xFF\to\x01\t\te"));
    }

    void theDialogIsOpenOnce()
    {
        as_dlg_open(gBase);
        QCOMPARE(gBase->findChildren<QDialog *>(QStringLiteral("associate_dlg")).size(), 1);
    }
};

QTEST_MAIN(AsDlgTest)
#include "as_dlg_qtest.moc"

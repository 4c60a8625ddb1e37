// The dialog that selects by pattern.
#include "app/cl.h"
#include "commands/fm_dlg.h"
#include "support/dialogs.h"
#include "views/pattern.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>

using namespace tav;
using namespace tav::test;

class PatternTest : public QObject {
    Q_OBJECT

    std::unique_ptr<OwnDir> dir_;
    std::unique_ptr<MainWindow> main_;

    static QComboBox *box() { return dialog_find<QComboBox>("pattern_dlg", "ppattern"); }

    // Types a pattern as a person does: what is marked is replaced.
    static void apply(const char *pattern)
    {
        box()->lineEdit()->selectAll();
        QTest::keyClick(box()->lineEdit(), Qt::Key_Delete);
        QTest::keyClicks(box()->lineEdit(), QString::fromUtf8(pattern));
        QTest::keyClick(box()->lineEdit(), Qt::Key_Return);
    }
    static void leave_directories_out()
    {
        dialog_find<QCheckBox>("pattern_dlg", "pinclude")->setChecked(true);
    }

private Q_SLOTS:
    void init()
    {
        init_read_cboxs(nullptr);
        dir_ = std::make_unique<OwnDir>();
        main_ = std::make_unique<MainWindow>();
        for (const char *name : {"a.c", "b.h", "c.o", "a.txt", "B.Txt"})
            dir_->file(name);
        dir_->folder("d.c");
        fl_setpath(dir_->path().c_str());
    }
    void cleanup()
    {
        if (QDialog *dialog = dialog_up("pattern_dlg"))
            dialog->reject();
        main_.reset();
        dir_.reset();
        init_destroy_cboxs();
    }

    void the_title_says_what_will_happen()
    {
        em_select_pattern(nullptr);
        QCOMPARE(dialog_up("pattern_dlg")->windowTitle(), QStringLiteral("Select Pattern"));
        QTest::keyClick(dialog_up("pattern_dlg"), Qt::Key_Escape);
        select_names({"a.c"});
        em_unselect_pattern(nullptr);
        QCOMPARE(dialog_up("pattern_dlg")->windowTitle(), QStringLiteral("Unselect Pattern"));
    }

    void alternatives_select_files_and_directories()
    {
        em_select_pattern(nullptr);
        apply("*.c|*.h");
        QCOMPARE(selected_names(), std::string("a.c b.h d.c"));
        QVERIFY(dialog_up("pattern_dlg"));
    }

    void the_checked_toggle_leaves_directories_out()
    {
        em_select_pattern(nullptr);
        leave_directories_out();
        apply("*.c|*.h");
        QCOMPARE(selected_names(), std::string("a.c b.h"));
    }

    void a_leading_mark_ignores_case()
    {
        em_select_pattern(nullptr);
        apply("^*.TXT");
        QCOMPARE(selected_names(), std::string("B.Txt a.txt"));
    }

    void opening_to_select_clears_the_selection()
    {
        select_names({"c.o"});
        em_select_pattern(nullptr);
        QCOMPARE(selected_names(), std::string());
        apply("*.h");
        apply("*.c");
        QCOMPARE(selected_names(), std::string("a.c b.h d.c"));
    }

    void opening_to_unselect_keeps_the_selection_and_takes_the_matches_away()
    {
        select_names({"a.c", "b.h", "d.c"});
        em_unselect_pattern(nullptr);
        QCOMPARE(selected_names(), std::string("a.c b.h d.c"));
        apply("*.c");
        QCOMPARE(selected_names(), std::string("b.h"));
    }

    void unselecting_needs_a_selection()
    {
        em_unselect_pattern(nullptr);
        QVERIFY(!dialog_up("pattern_dlg"));
        QVERIFY(!wblock_is_blocked(gBase));
    }

    void patterns_that_match_nothing_or_everything_data()
    {
        QTest::addColumn<QByteArray>("pattern");
        QTest::addColumn<int>("count");
        QTest::newRow("empty") << QByteArray() << 0;
        QTest::newRow("nothing") << QByteArray("zzz*") << 0;
        QTest::newRow("everything") << QByteArray("*") << 6;
        QTest::newRow("unbalanced") << QByteArray("[a") << 0;
        QTest::newRow("bracket alone") << QByteArray("[") << 0;
        QTest::newRow("empty bracket") << QByteArray("[]") << 0;
        QTest::newRow("negated nothing") << QByteArray("[!]") << 0;
        QTest::newRow("range backwards") << QByteArray("[z-a]*") << 0;
        QTest::newRow("unknown class") << QByteArray("[[:nothing:]]*") << 0;
        QTest::newRow("backslash at the end") << QByteArray("*\\") << 0;
        QTest::newRow("one alternative is malformed") << QByteArray("[|*.c") << 2;
        QTest::newRow("mark alone") << QByteArray("^") << 0;
        QTest::newRow("bar alone") << QByteArray("|") << 0;
        QTest::newRow("many stars") << QByteArray(2000, '*') + "b" << 0;
    }
    void patterns_that_match_nothing_or_everything()
    {
        QFETCH(QByteArray, pattern);
        QFETCH(int, count);
        em_select_pattern(nullptr);
        apply(pattern.constData());
        QCOMPARE(gDir.nselected, count);
    }

    void the_dialog_says_how_many_it_took()
    {
        em_select_pattern(nullptr);
        apply("*.c");
        QCOMPARE(dialog_find<QLabel>("pattern_dlg", "presult")->text(),
                 QStringLiteral("2 entries selected"));
        apply("c.o");
        QCOMPARE(dialog_find<QLabel>("pattern_dlg", "presult")->text(),
                 QStringLiteral("1 entry selected"));
    }

    void the_latest_pattern_is_shown_and_marked_even_when_it_is_the_only_one()
    {
        em_select_pattern(nullptr);
        QCOMPARE(box()->currentText(), QString());
        apply("*.c");
        dialog_click("pattern_dlg", "pclose");
        em_select_pattern(nullptr);
        QCOMPARE(box()->currentText(), QStringLiteral("*.c"));
        QCOMPARE(box()->lineEdit()->selectedText(), QStringLiteral("*.c"));
        apply("*.h");
        dialog_click("pattern_dlg", "pclose");
        em_select_pattern(nullptr);
        QCOMPARE(box()->currentText(), QStringLiteral("*.h"));
        QCOMPARE(box()->count(), 2);
        QCOMPARE(box()->itemText(1), QStringLiteral("*.c"));
    }

    void a_pattern_that_begins_like_a_remembered_one_is_taken_as_it_is()
    {
        cl_add(gPatternList, "*.c");
        em_select_pattern(nullptr);
        QTRY_COMPARE(QApplication::activeWindow(), dialog_up("pattern_dlg"));
        apply("*");
        QCOMPARE(gDir.nselected, 6);
    }

    void return_applies_the_pattern_that_is_offered()
    {
        cl_add(gPatternList, "*.c");
        em_select_pattern(nullptr);
        QTRY_COMPARE(QApplication::activeWindow(), dialog_up("pattern_dlg"));
        QTest::keyClick(box()->lineEdit(), Qt::Key_Return);
        QCOMPARE(selected_names(), std::string("a.c d.c"));
    }

    void a_remembered_pattern_that_is_no_text_keeps_its_bytes()
    {
        dir_->file("caf\xE9.c");
        fl_refresh();
        cl_add(gPatternList, "caf\xE9*");
        em_select_pattern(nullptr);
        QTRY_COMPARE(QApplication::activeWindow(), dialog_up("pattern_dlg"));
        QCOMPARE(box()->currentText(), QStringLiteral("caf\\xE9*"));
        QTest::keyClick(box()->lineEdit(), Qt::Key_Return);
        QCOMPARE(selected_names(), std::string("caf\xE9.c"));
    }

    void the_main_window_is_blocked_and_gets_the_keyboard_back()
    {
        em_select_pattern(nullptr);
        QVERIFY(wblock_is_blocked(main_->list));
        QTRY_VERIFY(box()->lineEdit()->hasFocus() || box()->hasFocus());
        dialog_click("pattern_dlg", "pclose");
        QVERIFY(!wblock_is_blocked(main_->list));
        QTRY_VERIFY(main_->list->hasFocus());
    }
};

QTEST_MAIN(PatternTest)
#include "pattern_qtest.moc"

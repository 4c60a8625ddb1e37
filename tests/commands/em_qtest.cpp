// The Edit menu: deleting with its questions, renaming in the row, dimming.
#include "commands/clip.h"
#include "commands/em.h"
#include "commands/em_rename.h"
#include "jobs.h"
#include "support/boxes.h"
#include "views/fl_fixture.h"
#include "views/menu_item.h"

#include <QMenu>
#include <QPushButton>
#include <fcntl.h>

namespace tav {

using test::gJobs;

using Handler = int (*)(QWidget *widget);

class EmTest : public QObject {
    Q_OBJECT

    std::unique_ptr<FlWindow> m_window;
    std::unique_ptr<TestDir> m_dir;
    uint32_t m_flags = 0;

    void show() { fl_setpath(m_dir->path().c_str()); }
    QMessageBox *box()
    {
        QList<QMessageBox *> boxes = test::boxes_standing();
        return boxes.isEmpty() ? nullptr : boxes.first();
    }
    void answer(const char *label)
    {
        QAbstractButton *button = test::boxes_button(box(), QLatin1String(label));
        QVERIFY(button);
        QTest::mouseClick(button, Qt::LeftButton);
        QTRY_VERIFY(!box());
    }
    bool left_of(const char *left, const char *right)
    {
        const auto x = [this](const char *label) {
            return test::boxes_button(box(), QLatin1String(label))->mapToGlobal(QPoint()).x();
        };
        return x(left) < x(right);
    }
    EmRenameField *field() { return m_window->list->findChild<EmRenameField *>(); }
    EmRenameField *rename(const char *name)
    {
        fl_goto(name, 0, FL_EXACT);
        em_rename(nullptr);
        return field();
    }

private Q_SLOTS:
    void initTestCase()
    {
        ui_gate_open();
        clip_setup();
        m_flags = gConfig->flags;
    }
    void init()
    {
        gConfig->flags = 0;
        m_dir = std::make_unique<TestDir>();
        m_window = std::make_unique<FlWindow>();
        test::jobs_catch();
        m_dir->file("a.tar.gz");
        m_dir->file("b");
        m_dir->dir("dir");
        show();
    }
    void cleanup()
    {
        m_window.reset();
        m_dir.reset();
        gConfig->flags = m_flags;
    }

    void delete_with_nothing_selected_does_nothing()
    {
        gConfig->flags = CONFIG_RM1_PROMPT | CONFIG_RM_PROMPT;
        em_delete(nullptr);
        QVERIFY(!box());
        QVERIFY(gJobs.empty());
    }

    void delete_question_data()
    {
        QTest::addColumn<unsigned>("flags");
        QTest::addColumn<QStringList>("names");
        QTest::addColumn<QString>("text");
        const QString one = QStringLiteral("Do you wish to delete '%1'?\n");
        const QStringList file{QStringLiteral("b")}, dir{QStringLiteral("dir")},
            two{QStringLiteral("b"), QStringLiteral("dir")};
        QTest::newRow("file, single") << CONFIG_RM1_PROMPT << file << one.arg(file[0]);
        QTest::newRow("file, multiple") << CONFIG_RM_PROMPT << file << QString();
        QTest::newRow("directory, single") << CONFIG_RM1_PROMPT << dir << one.arg(dir[0]);
        QTest::newRow("directory counts as multiple") << CONFIG_RM_PROMPT << dir << one.arg(dir[0]);
        QTest::newRow("two, single") << CONFIG_RM1_PROMPT << two << QString();
        QTest::newRow("two, multiple")
            << CONFIG_RM_PROMPT << two << QStringLiteral("You have selected 2 files?\n");
        QTest::newRow("no question") << 0u << dir << QString();
    }
    void delete_question()
    {
        QFETCH(unsigned, flags);
        QFETCH(QStringList, names);
        QFETCH(QString, text);
        gConfig->flags = flags;
        for (const QString &name : names)
            fl_select(name.toUtf8(), FL_EXACT);
        em_delete(nullptr);
        if (!text.isEmpty()) {
            QVERIFY(box());
            QCOMPARE(test::boxes_text(box()), text);
            QCOMPARE(box()->windowTitle(), QStringLiteral("Delete"));
            QCOMPARE(box()->defaultButton()->text(), QStringLiteral("&Delete"));
            QCOMPARE(box()->buttons().size(), 2);
            QVERIFY(left_of("&Delete", "&Cancel"));
            QVERIFY(gJobs.empty());
            answer("&Delete");
        }
        QCOMPARE(gJobs, std::vector{"delete " + m_dir->path() + ": " +
                                    names.join(QLatin1Char(' ')).toStdString() + " -> "});
    }

    void cancelled_delete_keeps_everything()
    {
        gConfig->flags = CONFIG_RM1_PROMPT;
        fl_select("b", FL_EXACT);
        em_delete(nullptr);
        answer("&Cancel");
        em_delete(nullptr);
        QTest::keyClick(box(), Qt::Key_Escape);
        QTRY_VERIFY(!box());
        QVERIFY(gJobs.empty());
    }

    void a_refresh_while_the_question_stands_changes_nothing()
    {
        gConfig->flags = CONFIG_RM1_PROMPT;
        fl_select("b", FL_EXACT);
        em_delete(nullptr);
        m_dir->file("0");
        fl_refresh();
        answer("&Delete");
        QCOMPARE(gJobs, std::vector{"delete " + m_dir->path() + ": b -> "});
    }

    void selecting_tells_the_status_bar_and_gives_the_list_the_keyboard_data()
    {
        QTest::addColumn<Handler>("handler");
        QTest::addColumn<QString>("status");
        QTest::newRow("all") << Handler(em_select_all) << QStringLiteral("3 selected items,");
        QTest::newRow("none") << Handler(em_unselect_all) << QString();
        QTest::newRow("the others")
            << Handler(em_invert_selection) << QStringLiteral("2 selected items,");
    }
    void selecting_tells_the_status_bar_and_gives_the_list_the_keyboard()
    {
        QFETCH(Handler, handler);
        QFETCH(QString, status);
        fl_select("b", FL_EXACT);
        m_window->status1->setText(QStringLiteral("old"));
        m_window->field->setFocus();
        QCOMPARE(handler(nullptr), W_CONTINUE);
        const QString text = m_window->status1->text();
        QCOMPARE(text.left(text.indexOf(QLatin1Char(',')) + 1), status);
        QVERIFY(m_window->list->hasFocus());
    }

    void setup_dims_what_needs_a_selection()
    {
        QMenu menu;
        for (const char *name :
             {"em_cut", "em_copy", "em_paste", "em_delete", "em_rename", "em_unselect",
              "em_unselect_all", "em_unselect_pattern", "em_select", "em_select_all", "em_invert"})
            menu.addAction(QLatin1String(name))->setObjectName(QLatin1String(name));
        em_setup(&menu);
        for (const char *name : {"em_cut", "em_copy", "em_paste", "em_delete", "em_rename",
                                 "em_unselect", "em_unselect_all", "em_unselect_pattern"})
            QVERIFY2(!menu_item_find(&menu, name)->isEnabled(), name);
        QVERIFY(menu_item_find(&menu, "em_select")->isEnabled());
        fl_select("b", FL_EXACT);
        em_copy(nullptr);
        em_setup(&menu);
        for (const QAction *action : menu.actions())
            QVERIFY(action->isEnabled());
    }

    void rename_selects_the_part_before_the_last_dot()
    {
        EmRenameField *edit = rename("a.tar.gz");
        QVERIFY(edit && edit->hasFocus());
        QCOMPARE(edit->text(), QStringLiteral("a.tar.gz"));
        QCOMPARE(edit->selectedText(), QStringLiteral("a.tar"));
    }

    void rename_of_a_name_with_no_dot_or_one_in_front_selects_all_of_it()
    {
        m_dir->file(".bashrc");
        fl_refresh();
        QCOMPARE(rename("b")->selectedText(), QStringLiteral("b"));
        QTest::keyClick(field(), Qt::Key_Escape);
        QTRY_VERIFY(!field());
        QCOMPARE(rename(".bashrc")->selectedText(), QStringLiteral(".bashrc"));
    }

    void rename_with_several_selected_takes_the_current_one()
    {
        fl_select("dir", FL_EXACT);
        fl_select("a.tar.gz", FL_EXACT);
        QCOMPARE(rename("b")->text(), QStringLiteral("b"));
    }

    void rename_enter_applies()
    {
        EmRenameField *edit = rename("a.tar.gz");
        QTest::keyClicks(edit, QStringLiteral("new"));
        QTest::keyClick(edit, Qt::Key_Return);
        QTRY_COMPARE(access(m_dir->at("new.gz").c_str(), F_OK), 0);
        QCOMPARE(fl_test_name(gDir.current), std::string("new.gz"));
        QVERIFY(m_window->list->hasFocus());
        QTRY_VERIFY(!field());
    }

    void rename_escape_leaves()
    {
        EmRenameField *edit = rename("b");
        QTest::keyClicks(edit, QStringLiteral("zzz"));
        QTest::keyClick(edit, Qt::Key_Escape);
        QTRY_VERIFY(!field());
        QCOMPARE(fl_find("b", FL_EXACT) >= 0, true);
        QCOMPARE(access(m_dir->at("zzz").c_str(), F_OK), -1);
    }

    void rename_takes_the_one_selected_entry_before_the_current_one()
    {
        fl_select("dir", FL_EXACT);
        QCOMPARE(rename("b")->text(), QStringLiteral("dir"));
    }

    void rename_of_nothing_opens_nothing()
    {
        fl_goto_index(DIR_PARENT);
        em_rename(nullptr);
        QVERIFY(!field());
    }

    void rename_never_replaces()
    {
        EmRenameField *edit = rename("a.tar.gz");
        edit->setText(QStringLiteral("b"));
        auto seen = test::boxes_answer_next(QStringLiteral("&Continue"));
        QTest::keyClick(edit, Qt::Key_Return);
        QTRY_VERIFY(seen->came);
        QCOMPARE(seen->title, QStringLiteral("Error"));
        QCOMPARE(seen->text, QStringLiteral("File name 'b' already exists"));
        QCOMPARE(access(m_dir->at("a.tar.gz").c_str(), F_OK), 0);
    }

    void rename_failure_is_told()
    {
        EmRenameField *edit = rename("b");
        edit->setText(QStringLiteral("x/y"));
        auto seen = test::boxes_answer_next(QStringLiteral("&Continue"));
        QTest::keyClick(edit, Qt::Key_Return);
        QTRY_VERIFY(seen->came);
        QCOMPARE(seen->text, QStringLiteral("Unable to rename 'x/y'."));
    }

    void rename_keeps_bytes_that_are_no_text()
    {
        m_dir->file("x\xff.c");
        show();
        fl_refresh();
        EmRenameField *edit = rename("x\xff.c");
        QTest::keyClick(edit, Qt::Key_End);
        QTest::keyClicks(edit, QStringLiteral("c"));
        QTest::keyClick(edit, Qt::Key_Return);
        QTRY_COMPARE(access(m_dir->at("x\xff.cc").c_str(), F_OK), 0);
    }

    void rename_shows_what_would_be_obeyed_and_keeps_it()
    {
        const char *name = "a\xe2\x80\xae"
                           "cod\n.exe";
        m_dir->file(name);
        show();
        fl_refresh();
        EmRenameField *edit = rename(name);
        QCOMPARE(edit->text(), QStringLiteral("a\\u202Ecod\u240A.exe"));
        QTest::keyClick(edit, Qt::Key_Home);
        QTest::keyClicks(edit, QStringLiteral("b"));
        QTest::keyClick(edit, Qt::Key_Return);
        QTRY_COMPARE(access(m_dir->at("b" + std::string(name)).c_str(), F_OK), 0);
    }

    void rename_field_follows_its_row_and_goes_with_it()
    {
        EmRenameField *edit = rename("b");
        const int before = edit->y();
        m_dir->file("0");
        fl_refresh();
        QTRY_VERIFY(edit->y() > before);
        unlink(m_dir->at("b").c_str());
        fl_refresh();
        QTRY_VERIFY(!field());
    }
};

} // namespace tav

QTEST_MAIN(tav::EmTest)
#include "em_qtest.moc"

// Finding entries, the current entry, selecting by name.
#include "fl_fixture.h"

namespace tav {

class FlFindTest : public QObject {
    Q_OBJECT

    std::unique_ptr<FlWindow> m_window;
    std::unique_ptr<TestDir> m_dir;

    void show() { fl_setpath(m_dir->path().c_str()); }

private Q_SLOTS:
    void init()
    {
        m_dir = std::make_unique<TestDir>();
        m_window = std::make_unique<FlWindow>();
    }
    void cleanup()
    {
        m_window.reset();
        m_dir.reset();
    }

    void nothing_to_find_is_no_entry()
    {
        m_dir->file("a");
        show();
        QCOMPARE(fl_find(nullptr, 0), DIR_NONE);
        QCOMPARE(fl_find("", FL_PREFIX), DIR_NONE);
        QCOMPARE(fl_find("..", FL_EXACT), DIR_PARENT);
        QCOMPARE(fl_find("b", FL_EXACT), DIR_NONE);
    }

    void exact_name_goes_before_anything_that_matches_as_a_pattern()
    {
        m_dir->file("a");
        m_dir->file("[ab]");
        m_dir->file("*");
        show();
        QCOMPARE(fl_test_name(fl_find("[ab]", FL_EXACT)), std::string("[ab]"));
        QCOMPARE(fl_test_name(fl_find("*", FL_EXACT)), std::string("*"));
        QCOMPARE(fl_test_name(fl_find("[a]", FL_EXACT)), std::string("a")); // the last resort
    }

    void prefix_is_found_and_a_pattern_too()
    {
        m_dir->file("abc");
        m_dir->file("abd");
        m_dir->file("xyz");
        show();
        QCOMPARE(fl_test_name(fl_find("ab", FL_PREFIX)), std::string("abc"));
        QCOMPARE(fl_test_name(fl_find("abd", FL_PREFIX)), std::string("abd"));
        QCOMPARE(fl_test_name(fl_find("*z", FL_PREFIX)), std::string("xyz"));
        QCOMPARE(fl_find("ab", 0), DIR_NONE);
        QCOMPARE(fl_test_name(fl_find("^XY?", 0)), std::string("xyz"));
    }

    void start_is_ignored()
    {
        m_dir->file("a1");
        m_dir->file("a2");
        show();
        QCOMPARE(fl_goto("a", 1, FL_PREFIX), 0);
        QCOMPARE(fl_goto("a", 99, FL_PREFIX), 0);
    }

    void backward_search_sees_only_the_first_entry()
    {
        m_dir->file("a");
        m_dir->file("b");
        show();
        QCOMPARE(fl_find("a", FL_PREFIX | FL_BACKWARD), 0);
        QCOMPARE(fl_find("b", FL_PREFIX | FL_BACKWARD), DIR_NONE);
        QCOMPARE(fl_find("b", FL_EXACT | FL_BACKWARD), DIR_NONE);
    }

    void directories_can_be_left_out()
    {
        m_dir->dir("a");
        m_dir->file("ab");
        show();
        QCOMPARE(fl_test_name(fl_find("a*", FL_FILES)), std::string("ab"));
        QCOMPARE(fl_find("a", FL_FILES | FL_EXACT), DIR_NONE);
    }

    void no_match_makes_the_current_index_none()
    {
        m_dir->file("a");
        m_dir->file("b");
        show();
        fl_goto_index(1);
        QVERIFY(gDir.entries[1]->flags & DIR_CURRENT);
        QCOMPARE(fl_goto("zzz", 0, FL_EXACT), DIR_NONE);
        QCOMPARE(gDir.current, DIR_NONE);
        QVERIFY(!(gDir.entries[1]->flags & DIR_CURRENT));
    }

    void first_entry_never_carries_the_flag()
    {
        m_dir->file("a");
        m_dir->file("b");
        show();
        fl_goto_index(1);
        fl_goto_index(0);
        QCOMPARE(gDir.current, 0);
        QVERIFY(!(gDir.entries[0]->flags & DIR_CURRENT));
        QVERIFY(!(gDir.entries[1]->flags & DIR_CURRENT));
    }

    void index_beyond_the_end_is_refused()
    {
        m_dir->file("a");
        m_dir->file("b");
        show();
        fl_goto_index(1);
        QCOMPARE(fl_goto_index(2), 2);
        QCOMPARE(gDir.current, 1);
        QVERIFY(gDir.entries[1]->flags & DIR_CURRENT);
        fl_goto_index(DIR_PARENT);
        QCOMPARE(gDir.current, DIR_PARENT);
        fl_goto_index(-77);
        QCOMPARE(gDir.current, DIR_NONE);
    }

    void goto_scrolls_the_row_into_view()
    {
        m_dir->many("f", 200);
        show();
        fl_goto_index(150);
        const QRect row = m_window->list->row_rect(fl_row_of_index(150));
        QVERIFY(m_window->list->viewport()->rect().contains(row.center()));
        fl_goto_index(DIR_PARENT);
        QCOMPARE(m_window->list->top(), 0);
        fl_goto_index(150);
        fl_goto_index(0);
        QCOMPARE(m_window->list->top(), 0); // ".." is in sight too
    }

    void selecting_by_pattern_takes_every_match_and_answers_the_last()
    {
        m_dir->file("a.c");
        m_dir->file("b.h");
        m_dir->file("c.c");
        m_dir->dir("d.c");
        show();
        QCOMPARE(fl_select("*.c|*.h", FL_FILES), 2);
        QCOMPARE(fl_test_selected(), std::string("a.c b.h c.c"));
        QCOMPARE(fl_select("*.c", 0), 3);
        QCOMPARE(fl_test_selected(), std::string("a.c b.h c.c d.c"));
        QCOMPARE(fl_unselect("*.c", 0), 3);
        QCOMPARE(fl_test_selected(), std::string("b.h"));
        QCOMPARE(fl_unselect("nothing", 0), DIR_NONE);
        QCOMPARE(fl_select("b*", FL_BACKWARD), DIR_NONE);
    }

    void selecting_an_exact_name_takes_nothing_else()
    {
        m_dir->file("*");
        m_dir->file("a");
        show();
        QCOMPARE(fl_select("*", FL_EXACT), 0);
        QCOMPARE(fl_test_selected(), std::string("*"));
    }

    void names_of_a_transferred_list_are_selected()
    {
        m_dir->file("[ab]");
        m_dir->file("a");
        m_dir->file("c");
        show();
        QCOMPARE(fl_select_transf({"c", "gone", "[ab]"}), fl_find("[ab]", FL_EXACT));
        QCOMPARE(fl_test_selected(), std::string("[ab] c"));
        QCOMPARE(fl_select_transf({}), DIR_NONE);
        fl_unselect_all(nullptr);
        QCOMPARE(fl_select_transf({"^A"}), fl_find("a", FL_EXACT));
    }

    void strange_patterns_end()
    {
        m_dir->file(std::string(255, 'a'));
        show();
        QCOMPARE(fl_select("[", 0), DIR_NONE);
        QCOMPARE(fl_select("[a", 0), DIR_NONE);
        QCOMPARE(fl_select("^", 0), DIR_NONE);
        QCOMPARE(fl_select("|", 0), DIR_NONE);
        QCOMPARE(fl_select((std::string(100000, '*') + "b").c_str(), 0), DIR_NONE);
        QCOMPARE(fl_select(std::string(100000, '*').c_str(), 0), 0);
    }
};

} // namespace tav

QTEST_MAIN(tav::FlFindTest)
#include "fl_find_qtest.moc"

// Changing directory and opening entries, with what is said when that fails.
#include "fl_fixture.h"

namespace tav {

class FlPathTest : public QObject {
    Q_OBJECT

    std::unique_ptr<FlWindow> m_window;
    std::unique_ptr<TestDir> m_dir;

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

    void setpath_shows_the_directory()
    {
        m_dir->file("b");
        m_dir->file("a");
        QCOMPARE(fl_setpath(m_dir->path().c_str()), 0);
        QCOMPARE(fl_test_names(), std::string("a b"));
        QCOMPARE(gDir.path, m_dir->path());
        QCOMPARE(gDir.current, 0);
        QCOMPARE(backward_history.count, 0);
        QVERIFY(gHeard.notifies >= 1);
    }

    void setpath_normalises_and_refuses_the_same_path()
    {
        QCOMPARE(fl_setpath((m_dir->path() + "//").c_str()), 0);
        QCOMPARE(gDir.path, m_dir->path());
        QCOMPARE(fl_setpath((m_dir->path() + "/").c_str()), -1);
        QCOMPARE(fl_setpath(m_dir->path().c_str()), -1);
    }

    void missing_directory_is_reported_and_changes_nothing()
    {
        m_dir->file("a");
        fl_setpath(m_dir->path().c_str());
        FlBox box;
        const std::string missing = m_dir->at("gone/");
        QCOMPARE(fl_setpath(missing.c_str()), -1);
        QCOMPARE(box.text(), "Error: Directory '" + m_dir->at("gone") + "', not found");
        QCOMPARE(gDir.path, m_dir->path());
        QCOMPARE(fl_test_names(), std::string("a"));
    }

    void file_is_reported_as_a_path_not_found()
    {
        const std::string file = m_dir->file("plain");
        FlBox box;
        QCOMPARE(fl_newpath(nullptr, file.c_str()), -1);
        QCOMPARE(box.text(), "Error: Path '" + file + "' not found");
        QCOMPARE(backward_history.count, 0);
    }

    void unreadable_directory_is_reported_to_an_ordinary_user()
    {
        m_dir->dir("closed", 0);
        const uid_t user = geteuid();
        if (user == 0 && setresuid(65534, 65534, 0) != 0)
            QFAIL("cannot become an ordinary user");
        FlBox box;
        const int result = fl_setpath(m_dir->at("closed").c_str());
        if (user == 0 && setresuid(0, 0, 0) != 0)
            QFAIL("cannot become root again");
        QCOMPARE(result, -1);
        QCOMPARE(box.text(), "Error: Cannot access directory '" + m_dir->at("closed") + "'");
    }

    void directory_that_cannot_be_entered_shows_as_an_empty_list_at_its_path()
    {
        m_dir->dir("half");
        m_dir->file("half/inside");
        m_dir->mode("half", 0444); // readable, but nobody but root may enter
        const uid_t user = geteuid();
        if (user == 0 && setresuid(65534, 65534, 0) != 0)
            QFAIL("cannot become an ordinary user");
        const int result = fl_setpath(m_dir->at("half").c_str());
        if (user == 0 && setresuid(0, 0, 0) != 0)
            QFAIL("cannot become root again");
        QCOMPARE(result, 0);
        QCOMPARE(gDir.path, m_dir->at("half"));
        QCOMPARE(gDir.count, 0);
        QCOMPARE(gDir.current, DIR_PARENT);
    }

    void null_and_empty_paths_are_reported()
    {
        FlBox box;
        QCOMPARE(fl_setpath(nullptr), -1);
        QCOMPARE(fl_setpath(""), -1);
        QCOMPARE(box.text(), std::string("Error: Directory '', not found"
                                         "Error: Directory '', not found"));
    }

    void name_in_a_message_is_plain_text()
    {
        const std::string file = m_dir->file("<b>&bold\nline\x80");
        FlBox box;
        fl_setpath(file.c_str());
        QVERIFY(box.text().find("<b>&bold") != std::string::npos);
        QVERIFY(box.text().find('\n') == std::string::npos);
    }

    void newpath_feeds_the_history()
    {
        m_dir->dir("a");
        m_dir->dir("b");
        fl_newpath(nullptr, m_dir->path().c_str());
        QCOMPARE(backward_history.count, 0); // there was no directory before the first
        x_history_push(forward_history, "/somewhere");
        QCOMPARE(fl_newpath(nullptr, m_dir->at("a").c_str()), 0);
        QCOMPARE(backward_history.count, 1);
        QCOMPARE(backward_history.nodes.front(), m_dir->path());
        QCOMPARE(forward_history.count, 0);
        x_history_push(forward_history, "/somewhere");
        QCOMPARE(fl_newpath(nullptr, m_dir->at("a").c_str()), -1);
        QCOMPARE(backward_history.count, 1);
        QCOMPARE(forward_history.count, 1);
    }

    void up_selects_the_directory_just_left()
    {
        m_dir->dir("a/b");
        m_dir->dir("a/c");
        fl_setpath(m_dir->at("a/c").c_str());
        fl_up();
        QCOMPARE(gDir.path, m_dir->at("a"));
        QCOMPARE(fl_test_name(gDir.current), std::string("c"));
        QCOMPARE(fl_test_selected(), std::string("c"));
        QCOMPARE(backward_history.nodes.front(), m_dir->at("a/c"));
    }

    void up_from_usr_goes_to_the_root_and_selects_usr()
    {
        fl_setpath("/usr/");
        fl_up();
        QCOMPARE(gDir.path, std::string("/"));
        QCOMPARE(fl_test_selected(), std::string("usr"));
    }

    void up_from_a_path_with_slashes_at_its_end()
    {
        fl_setpath("/usr");
        gDir.path = "/usr///"; // as a start directory may come
        fl_up();
        QCOMPARE(gDir.path, std::string("/"));
        QCOMPARE(fl_test_selected(), std::string("usr"));
    }

    void up_from_the_root_does_nothing()
    {
        fl_setpath("/");
        const int notifies = gHeard.notifies;
        fl_up();
        QCOMPARE(gDir.path, std::string("/"));
        QCOMPARE(gHeard.notifies, notifies);
        QCOMPARE(backward_history.count, 0);
    }

    void up_with_a_name_that_looks_like_a_pattern()
    {
        m_dir->dir("[ab]");
        m_dir->dir("a");
        fl_setpath(m_dir->at("[ab]").c_str());
        fl_up();
        QCOMPARE(fl_test_selected(), std::string("[ab]"));
    }

    void down_enters_the_current_directory_and_goes_up_from_the_parent_row()
    {
        m_dir->dir("a/b");
        fl_setpath(m_dir->at("a").c_str());
        fl_goto_index(0);
        fl_down();
        QCOMPARE(gDir.path, m_dir->at("a/b"));
        QCOMPARE(gDir.current, DIR_PARENT); // nothing else is there
        fl_down();
        QCOMPARE(gDir.path, m_dir->at("a"));
        fl_goto_index(DIR_NONE);
        fl_down();
        QCOMPARE(gDir.path, m_dir->at("a"));
    }

    void down_into_a_file_reports_it()
    {
        m_dir->file("a");
        fl_setpath(m_dir->path().c_str());
        FlBox box;
        fl_down();
        QCOMPARE(box.text(), "Error: Path '" + m_dir->at("a") + "' not found");
    }

    void open_acts_on_the_given_index()
    {
        m_dir->dir("one");
        m_dir->dir("two");
        fl_setpath(m_dir->path().c_str());
        QCOMPARE(gDir.current, 0);
        QCOMPARE(fl_open(1), 0);
        QCOMPARE(gDir.path, m_dir->at("two"));
        QCOMPARE(fl_open(DIR_PARENT), 0);
        QCOMPARE(gDir.path, m_dir->path());
        QCOMPARE(fl_open(DIR_NONE), -1);
        QCOMPARE(fl_open(99), -1);
    }

    void open_runs_the_associations_and_nothing_else()
    {
        m_dir->file("x.c", 0, 0755);
        gHeard.associated = "x.c";
        fl_setpath(m_dir->path().c_str());
        QCOMPARE(fl_open(0), 0);
        QCOMPARE(gHeard.run, std::vector<std::string>{"x.c"});
        QVERIFY(gHeard.programs.empty());
    }

    void open_starts_the_listed_program_by_its_full_path()
    {
        m_dir->file("ls", 0, 0755);
        m_dir->file("plain", 0, 0644);
        m_dir->file("for others", 0, 0611);
        fl_setpath(m_dir->path().c_str());
        for (int i = 0; i < 3; ++i)
            QCOMPARE(fl_open(i), 0);
        QCOMPARE(gHeard.programs, std::vector<std::string>{m_dir->at("ls")});
        QVERIFY(!wblock_is_blocked(gBase));
    }

    void fullpath_joins_with_one_slash()
    {
        m_dir->file("a");
        fl_setpath(m_dir->path().c_str());
        QCOMPARE(fl_get_fullpath(0), m_dir->at("a"));
        QCOMPARE(fl_get_fullpath(DIR_PARENT), std::string());
        QCOMPARE(fl_get_fullpath(1), std::string());
        fl_setpath("/");
        QCOMPARE(fl_get_fullpath(0), "/" + fl_test_name(0));
    }

    void path_may_be_the_listings_own_text()
    {
        m_dir->dir("a");
        fl_setpath(m_dir->path().c_str());
        gDir.path += "/a";
        const std::string whole = gDir.path;
        gDir.path = m_dir->path();
        QCOMPARE(fl_setpath(whole.c_str()), 0);
        QCOMPARE(gDir.path, m_dir->at("a"));
    }

    void links_in_circles_are_walked_as_far_as_they_go()
    {
        m_dir->dir("a");
        m_dir->link("a/loop", ".");
        m_dir->link("self", "self");
        fl_setpath(m_dir->at("a").c_str());
        fl_open(0);
        QCOMPARE(gDir.path, m_dir->at("a/loop"));
        FlBox box;
        QCOMPARE(fl_setpath(m_dir->at("self").c_str()), -1);
        QCOMPARE(box.text(), "Error: Directory '" + m_dir->at("self") + "', not found");
    }
};

} // namespace tav

QTEST_MAIN(tav::FlPathTest)
#include "fl_path_qtest.moc"

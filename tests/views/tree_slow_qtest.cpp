// The directory tree on disks that are slow, hang or refuse, and long levels and lists: nothing
// waits, and what comes later comes in order.
#include "platform/worker.h"
#include "views/tree_jobs.h"
#include "ways_fixture.h"

#include <atomic>
#include <climits>
#include <set>
#include <unistd.h>

namespace tav {

namespace {

std::atomic<bool> sHang; // directories whose path holds "hang" do not answer
std::atomic<int> sHanging;

void wait_while_hanging(const char *path)
{
    if (!strstr(path, "hang"))
        return;
    ++sHanging;
    test_wait([] { return !sHang; }, 60000);
    --sHanging;
}

int slow_has_subdirectories(const char *parent, const char *name, unsigned)
{
    wait_while_hanging(parent ? parent : name);
    return 1;
}

std::atomic<int> sAsked;     // subdirectory questions so far
std::atomic<int> sHangAfter; // from this one on they wait

int later_slow_has_subdirectories(const char *, const char *, unsigned)
{
    const int number = ++sAsked;
    test_wait([number] { return number <= sHangAfter; }, 60000);
    return 0;
}

// Replaces what the tree's workers ask, and lets all of it go at the end.
class Calls {
public:
    explicit Calls(const TreeCalls &calls) : before_(gTreeCalls)
    {
        gTreeCalls = calls;
        sAsked = 0;
    }
    ~Calls()
    {
        sHang = false;
        sHangAfter = INT_MAX;
        test_wait([] { return sHanging == 0; });
        gTreeCalls = before_;
    }
    Calls(const Calls &) = delete;
    Calls &operator=(const Calls &) = delete;

private:
    TreeCalls before_;
};

DIR *slow_open(const char *path)
{
    wait_while_hanging(path);
    return opendir(path);
}

} // namespace

class TreeSlowTest : public QObject {
    Q_OBJECT

    std::unique_ptr<WaysWindow> m;

private Q_SLOTS:
    void initTestCase()
    {
        ui_gate_open();
        if (access("/dev/shm", W_OK) == 0)
            qputenv("TMPDIR",
                    "/dev/shm"); // thousands of directories: a busy disk would take minutes
    }
    void cleanupTestCase() { ui_gate_close(); }
    void init() { m = std::make_unique<WaysWindow>(); }
    void cleanup() { m.reset(); }

    void many_directories_in_one_level()
    {
        for (int i = 0; i < 3000; ++i)
            m->dir.dir("top/d" + std::to_string(i));
        m->hotlist({m->dir.at("top")});
        m->expand(m->row(0));
        m->settle();
        QCOMPARE(m->row(0)->childCount(), 3000);
        std::string before;
        for (int i = 0; i < 3000; ++i) {
            QVERIFY(before < m->row(i, m->row(0))->name);
            before = m->row(i, m->row(0))->name;
        }
    }

    void a_hanging_directory_freezes_nothing()
    {
        const Calls calls({slow_has_subdirectories, slow_open});
        sHang = true;
        m->dir.dir("hang/inner");
        m->dir.dir("quick/inner");
        tree_set_paths({m->dir.at("hang"), m->dir.at("quick")});
        tree_build(m->tree);
        QCOMPARE(m->tree->topLevelItemCount(), 2); // the rows stand at once
        QVERIFY(QTest::qWaitFor([this] { return m->row(1)->look == TreeLook::Expandable; }));
        QCOMPARE(m->row(0)->look, TreeLook::Unknown);
        m->row(1)->setExpanded(true);
        QTRY_COMPARE(m->row(1)->childCount(), 1);
        QCOMPARE(m->labels(m->row(1)), std::string("inner"));
        m->row(0)->setChildIndicatorPolicy(QTreeWidgetItem::ShowIndicator);
        m->row(0)->setExpanded(true); // gives up waiting and goes on
        QCOMPARE(m->row(0)->childCount(), 0);
        QVERIFY(!wblock_is_blocked(gBase));
        m->click(m->row(1)); // and everything else works
        QCOMPARE(gDir.path, m->dir.at("quick"));
        sHang = false;
        QVERIFY(QTest::qWaitFor([this] { return m->row(0)->childCount() == 1; }));
        m->settle();
        QTRY_COMPARE(sHanging.load(), 0);
    }

    void a_click_on_a_hanging_directory_stops_nothing()
    {
        const Calls calls({slow_has_subdirectories, slow_open});
        sHang = true;
        m->dir.dir("hang");
        m->dir.dir("quick");
        m->hotlist_unsettled({m->dir.at("hang"), m->dir.at("quick")});
        QTRY_COMPARE(sHanging.load(), 1); // the row's own question
        m->tree->setFocus();
        for (int i = 0; i < 3; ++i)
            m->click_only(m->row(0));
        QVERIFY(tree_go_is_waiting());
        QTRY_COMPARE(sHanging.load(), 2); // asked once, however often it is wanted
        QCOMPARE(gDir.path, m->dir.path());
        QCOMPARE(m->left(),
                 QStringLiteral("Waiting for '%1'").arg(QString::fromStdString(m->dir.at("hang"))));
        sHang = false;
        QTRY_COMPARE(gDir.path, m->dir.at("hang"));
        QVERIFY(m->tree->hasFocus());
        QCOMPARE(fl_get_back_count(), 1);
    }

    void a_directory_that_answers_too_late_is_not_shown()
    {
        const Calls calls({slow_has_subdirectories, slow_open});
        sHang = true;
        m->dir.dir("hang");
        m->dir.dir("quick");
        m->hotlist_unsettled({m->dir.at("hang"), m->dir.at("quick")});
        m->click_only(m->row(0));
        m->click(m->row(1));
        QCOMPARE(gDir.path, m->dir.at("quick"));
        m->click_only(m->row(0));
        fl_newpath(nullptr, m->dir.path().c_str());
        sHang = false;
        QTRY_COMPARE(worker_count(), 0);
        QTRY_VERIFY(!tree_go_is_waiting());
        QCOMPARE(gDir.path, m->dir.path());
    }

    void the_hotlist_menu_does_not_wait_for_a_hanging_directory()
    {
        const Calls calls({slow_has_subdirectories, slow_open});
        sHang = true;
        m->dir.dir("hang");
        m->list->setFocus();
        _new_path(m->dir.at("hang").c_str());
        QCOMPARE(gDir.path, m->dir.path());
        sHang = false;
        QTRY_COMPARE(gDir.path, m->dir.at("hang"));
        QVERIFY(m->list->hasFocus());
    }

    void a_row_may_go_while_its_level_is_being_read()
    {
        const Calls calls({slow_has_subdirectories, slow_open});
        m->dir.dir("hang/inner");
        sHang = true;
        m->hotlist_unsettled({m->dir.at("hang"), "/usr"});
        m->row(0)->setChildIndicatorPolicy(QTreeWidgetItem::ShowIndicator);
        m->row(0)->setExpanded(true);
        tree_remove(m->tree, m->dir.at("hang").c_str());
        sHang = false;
        QTRY_COMPARE(sHanging.load(), 0);
        m->settle();
        QCOMPARE(m->labels(), std::string("/usr"));
    }

    void rows_found_before_a_disk_hangs_are_shown()
    {
        for (const char *name : {"top/a", "top/b", "top/c"})
            m->dir.dir(name);
        m->hotlist({m->dir.at("top")});
        const Calls calls({later_slow_has_subdirectories, opendir});
        sHangAfter = 2;
        m->row(0)->setExpanded(true);
        QTRY_COMPARE(m->row(0)->childCount(), 2);
        QVERIFY(tree_level_is_reading());
        m->row(0)->setExpanded(false); // nobody waits for the third
        QVERIFY(!tree_level_is_reading());
        QCOMPARE(m->row(0)->childCount(), 0);
    }

    void a_level_that_comes_in_pieces_is_in_order_data()
    {
        QTest::addColumn<bool>("sorted");
        QTest::newRow("by name") << true;
        QTest::newRow("as the disk has them") << false;
    }
    void a_level_that_comes_in_pieces_is_in_order()
    {
        QFETCH(bool, sorted);
        if (!sorted)
            gOptions &= ~OPTION_TREE_SORTED;
        for (int i = 0; i < 4000; ++i)
            m->dir.dir("top/d" + std::to_string(i));
        m->hotlist({m->dir.at("top")});
        const Calls calls({later_slow_has_subdirectories, opendir});
        sHangAfter = 1500;
        m->row(0)->setExpanded(true);
        QTRY_COMPARE(m->row(0)->childCount(), 1500);
        sHangAfter = 2500;
        QTRY_COMPARE(m->row(0)->childCount(), 2500);
        sHangAfter = 3500; // so long a level gets the rest at its end
        QTRY_COMPARE(sAsked.load(), 3501);
        QCOMPARE(m->row(0)->childCount(), 2500);
        sHangAfter = INT_MAX;
        m->settle();
        QCOMPARE(m->row(0)->childCount(), 4000);
        std::set<std::string> names;
        for (int i = 0; i < 4000; ++i) {
            const std::string &name = m->row(i, m->row(0))->name;
            QVERIFY(!sorted || names.empty() || *names.rbegin() < name);
            names.insert(name);
        }
        QCOMPARE(names.size(), size_t(4000));
    }

    void a_root_that_hangs_can_be_left_by_keys()
    {
        m->dir.dir("hang/inner");
        m->hotlist({m->dir.at("hang")});
        const Calls calls({slow_has_subdirectories, slow_open});
        sHang = true;
        m->tree->setFocus();
        m->tree->setCurrentItem(m->row(0));
        QTest::keyClick(m->tree, Qt::Key_Return, Qt::ControlModifier);
        QCOMPARE(std::string(tree_root()), m->dir.at("hang"));
        QCOMPARE(m->tree->current(), m->row(0)); // ".."
        QTest::keyClick(m->tree, Qt::Key_Return, Qt::ControlModifier);
        QVERIFY(!tree_root());
        QCOMPARE(m->labels(), m->dir.at("hang"));
    }

    void a_directory_that_cannot_be_read_shows_as_a_file()
    {
        m->dir.dir("closed/inner");
        const Calls calls({[](const char *, const char *, unsigned) { return -1; }, opendir});
        m->hotlist({m->dir.at("closed")});
        QCOMPARE(m->row(0)->look, TreeLook::Unreadable);
    }

    void a_hundred_thousand_rows_are_shown_and_changed()
    {
        std::vector<std::string> paths;
        for (int i = 0; i < 100000; ++i)
            paths.push_back("/no/such/" + std::to_string(i));
        tree_set_paths(paths);
        tree_build(m->tree);
        QCOMPARE(m->tree->topLevelItemCount(), 100000);
        QCOMPARE(tree_add(m->tree, "/usr"), 0);
        tree_remove(m->tree, "/no/such/5");
        QCOMPARE(m->tree->topLevelItemCount(), 100000);
        QCOMPARE(m->row(99999)->name, std::string("/usr"));
        QTRY_COMPARE(m->row(0)->look, TreeLook::Unreadable);
    }
};

} // namespace tav

QTEST_MAIN(tav::TreeSlowTest)
#include "tree_slow_qtest.moc"

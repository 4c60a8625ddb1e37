// Reading again: what stays, what is lost, what waits, what can be stopped.
#include "fl_fixture.h"

#include "platform/ui_slice.h"

namespace tav {

namespace {

int sNames = 0;              // names whose status was asked for
void (*sAtName)() = nullptr; // a test's own part in the middle of a read
bool sSlow = false;          // a directory on a slow disk
DirCalls sCalls;             // the real ones

int x_status(int fd, const char *name, struct stat *status, int flags)
{
    ++sNames;
    if (sAtName)
        sAtName();
    if (sSlow)
        test_wait([] { return false; }, UI_SLICE_EVERY);
    return sCalls.status(fd, name, status, flags);
}

void x_post_key(FlView *list, Qt::Key key)
{
    QApplication::postEvent(list, new QKeyEvent(QEvent::KeyPress, key, Qt::NoModifier));
}

} // namespace

class FlRefreshTest : public QObject {
    Q_OBJECT

    std::unique_ptr<FlWindow> m_window;
    std::unique_ptr<TestDir> m_dir;

    void show() { fl_setpath(m_dir->path().c_str()); }

private Q_SLOTS:
    void init()
    {
        m_dir = std::make_unique<TestDir>();
        m_window = std::make_unique<FlWindow>();
        sNames = 0;
        sAtName = nullptr;
        sSlow = false;
        sCalls = gDirCalls;
        gDirCalls.status = x_status;
    }
    void cleanup()
    {
        gDirCalls = sCalls;
        m_window.reset();
        m_dir.reset();
    }

    void refresh_keeps_the_cursor_on_the_first_selected_and_selects_nothing()
    {
        for (const char *name : {"a", "b", "c", "d"})
            m_dir->file(name);
        show();
        fl_select_index(1);
        fl_select_index(3);
        m_dir->file("aa");
        fl_refresh();
        QCOMPARE(fl_test_name(gDir.current), std::string("b"));
        QCOMPARE(fl_test_selected(), std::string());
        QCOMPARE(fl_test_names(), std::string("a aa b c d"));
    }

    void refresh_without_a_selection_puts_the_cursor_first()
    {
        m_dir->many("f", 100);
        show();
        fl_goto_index(90);
        QVERIFY(m_window->list->top() > 0);
        fl_refresh();
        QCOMPARE(gDir.current, 0);
        QCOMPARE(m_window->list->top(), 0);
    }

    void refresh_after_the_remembered_entry_is_gone()
    {
        m_dir->file("a");
        m_dir->file("b");
        show();
        fl_select_index(1);
        m_dir->remove("b");
        fl_refresh();
        QCOMPARE(gDir.current, DIR_NONE);
        QCOMPARE(fl_test_names(), std::string("a"));
    }

    void selection_of_another_directory_is_not_remembered()
    {
        m_dir->dir("one");
        m_dir->dir("two");
        m_dir->file("one/a");
        m_dir->file("one/b");
        m_dir->file("two/a");
        m_dir->file("two/b");
        fl_setpath(m_dir->at("one").c_str());
        fl_select_index(1);
        fl_setpath(m_dir->at("two").c_str());
        QCOMPARE(gDir.current, 0);
    }

    void empty_directory_has_the_cursor_on_the_parent_row()
    {
        show();
        QCOMPARE(gDir.count, 0);
        QCOMPARE(gDir.current, DIR_PARENT);
    }

    void filter_is_set_once()
    {
        m_dir->file("a.c");
        m_dir->file("b.h");
        m_dir->dir("d");
        show();
        QCOMPARE(fl_setspec("*"), -1);
        QCOMPARE(fl_setspec("*.c"), 0);
        QCOMPARE(fl_test_names(), std::string("a.c d"));
        const int notifies = gHeard.notifies;
        QCOMPARE(fl_setspec("*.c"), -1);
        QCOMPARE(gHeard.notifies, notifies);
    }

    void empty_and_null_filters_set_the_star()
    {
        m_dir->file("a.c");
        m_dir->file("b.h");
        show();
        fl_setspec("*.c");
        QCOMPARE(fl_setspec(""), 0);
        QCOMPARE(gDir.filespec, std::string("*"));
        QCOMPARE(fl_test_names(), std::string("a.c b.h"));
        QCOMPARE(fl_setspec(nullptr), -1);
        fl_setspec("*.c");
        QCOMPARE(fl_setspec(nullptr), 0);
        QCOMPARE(gDir.filespec, std::string("*"));
    }

    void directory_deleted_while_shown_becomes_an_empty_list()
    {
        m_dir->dir("gone");
        m_dir->file("gone/a");
        fl_setpath(m_dir->at("gone").c_str());
        fl_select_all();
        m_dir->remove("gone");
        FlBox box;
        fl_refresh();
        QCOMPARE(gDir.count, 0);
        QCOMPARE(gDir.nselected, 0);
        QCOMPARE(gDir.path, m_dir->at("gone"));
        QCOMPARE(box.text(), std::string()); // no message
        QVERIFY(!m_window->list->grab().isNull());
        fl_up();
        QCOMPARE(gDir.path, m_dir->path());
        QCOMPARE(gDir.current, DIR_NONE); // what was left is not there
    }

    void failed_read_leaves_its_timer_and_the_changed_path()
    {
        m_dir->file("a");
        show();
        gDir.path = m_dir->at("nowhere");
        fl_refresh();
        QCOMPARE(gDir.path, m_dir->at("nowhere"));
        QCOMPARE(gDir.count, 0);
        m_window->status2->clear();
        QTRY_COMPARE(m_window->status2->text(), QStringLiteral("0 read"));
        gDir.path = m_dir->path();
        fl_refresh();
        QCOMPARE(gDir.count, 1);
    }

    void status_bar_shows_the_count_and_is_cleared()
    {
        m_dir->file("a");
        m_dir->file("b");
        show();
        QCOMPARE(m_window->status1->text(), QString());
        QCOMPARE(m_window->status2->text(), QStringLiteral("2 read"));
    }

    void status_bar_tells_what_is_going_on()
    {
        static QStringList sSaid;
        sSaid.clear();
        gDirHooks.status = [](const char *text) { sSaid << QString::fromUtf8(text); };
        m_dir->file("a");
        show();
        QCOMPARE(sSaid, (QStringList{QStringLiteral("Reading Directory"),
                                     QStringLiteral("Displaying Directory"), QString()}));
    }

    void window_is_blocked_while_reading_and_free_afterwards()
    {
        static bool sBlocked;
        sBlocked = false;
        sAtName = [] { sBlocked = wblock_is_blocked(gBase) && fl_is_reading(); };
        m_dir->file("a");
        show();
        QVERIFY(sBlocked);
        QVERIFY(!fl_is_reading());
        QVERIFY(!wblock_is_blocked(gBase));
    }

    void refresh_forgets_typed_keys()
    {
        m_dir->file("a");
        show();
        fl_timer_set();
        gHeard.clears = 0;
        fl_refresh();
        QVERIFY(gHeard.clears >= 1);
    }

    void refreshes_asked_for_while_reading_are_done_once_afterwards()
    {
        m_dir->file("a");
        m_dir->file("b");
        sAtName = [] {
            if (sNames <= 2) {
                fl_refresh();
                fl_refresh();
            }
        };
        show();
        QCOMPARE(sNames, 4); // two names, twice
        QCOMPARE(fl_test_names(), std::string("a b"));
        QCOMPARE(gHeard.notifies, 2);
    }

    void nothing_else_starts_a_read_inside_a_read()
    {
        m_dir->file("a");
        m_dir->dir("d");
        static int sSet, sNew, sSpec;
        sSet = sNew = sSpec = 0;
        sAtName = [] {
            sSet = fl_setpath("/");
            sNew = fl_newpath(nullptr, "/usr");
            sSpec = fl_setspec("*.c");
            fl_sort_cb(2);
            fl_up();
            fl_down();
        };
        show();
        QCOMPARE(sSet, -1);
        QCOMPARE(sNew, -1);
        QCOMPARE(sSpec, -1);
        QCOMPARE(gDir.path, m_dir->path());
        QCOMPARE(fl_test_names(), std::string("a d"));
        QCOMPARE(backward_history.count, 0);
    }

    void list_can_be_painted_at_any_moment_of_a_read()
    {
        m_dir->many("f", 60);
        show();
        fl_select_all();
        static FlView *sList;
        sList = m_window->list;
        sNames = 0;
        sAtName = [] {
            sList->set_top(sNames * 7 % 500);
            sList->grab();
        };
        fl_refresh();
        QCOMPARE(sNames, 60);
    }

    void escape_stops_a_long_read_and_leaves_what_was_read()
    {
        m_dir->many("f", 200);
        static FlView *sList;
        sList = m_window->list;
        sSlow = true;
        sAtName = [] {
            if (sNames == 20)
                x_post_key(sList, Qt::Key_Escape);
        };
        show();
        QVERIFY2(gDir.count >= 20 && gDir.count < 100, qPrintable(QString::number(gDir.count)));
        QVERIFY(gHeard.keys.empty());
        QCOMPARE(gDir.path, m_dir->path());
        QCOMPARE(gDir.current, 0);
        QVERIFY(std::is_sorted(gDir.entries.begin(), gDir.entries.begin() + gDir.count,
                               [](auto *a, auto *b) { return strcmp(a->name, b->name) < 0; }));
    }

    void key_typed_while_reading_comes_afterwards()
    {
        m_dir->many("f", 20);
        static FlView *sList;
        sList = m_window->list;
        sSlow = true;
        sAtName = [] {
            if (sNames == 2)
                x_post_key(sList, Qt::Key_End);
        };
        show();
        QTRY_COMPARE(gDir.current, 19);
    }

    void long_read_shows_its_rows_and_its_count()
    {
        m_dir->many("f", 100);
        static FlWindow *sWindow;
        static bool sPainted, sCounted;
        sWindow = m_window.get();
        sPainted = sCounted = false;
        sSlow = true;
        sAtName = [] {
            const QRect row = sWindow->list->row_rect(10);
            const QImage image = sWindow->list->viewport()->grab(row).toImage();
            for (int x = 30; x < 80; ++x)
                sPainted |= image.pixelColor(x, image.height() / 2) != image.pixelColor(0, 0);
            sCounted |= sWindow->status2->text().endsWith(QLatin1String(" read")) &&
                        sWindow->status2->text() != QLatin1String("100 read");
        };
        show();
        QVERIFY(sPainted);
        QVERIFY(sCounted);
    }

    void directory_may_change_while_it_is_read()
    {
        m_dir->many("f", 500);
        static TestDir *sDir;
        sDir = m_dir.get();
        sAtName = [] {
            char name[32];
            snprintf(name, sizeof name, "f%06d", 499 - sNames % 500);
            sDir->remove(name);
            snprintf(name, sizeof name, "new%d", sNames);
            if (sNames < 200)
                sDir->file(name);
        };
        show();
        sAtName = nullptr;
        fl_refresh();
        QCOMPARE(static_cast<size_t>(gDir.count), m_dir->names().size());
    }

    void refresh_from_outside_says_so_to_who_is_told()
    {
        static bool sOutside;
        sOutside = false;
        fl_set_notify_cb([] { sOutside = fl_is_outside(); });
        m_dir->file("a");
        show();
        QVERIFY(!sOutside);
        fl_refresh_outside();
        QVERIFY(sOutside);
        QVERIFY(!fl_is_outside());
        fl_refresh();
        QVERIFY(!sOutside);
    }

    void refresh_from_outside_that_had_to_wait_is_still_from_outside()
    {
        static std::vector<bool> sOutside;
        sOutside.clear();
        fl_set_notify_cb([] { sOutside.push_back(fl_is_outside()); });
        m_dir->file("a");
        sAtName = [] {
            if (sNames == 1)
                fl_refresh_outside();
        };
        show();
        QCOMPARE(sOutside, (std::vector<bool>{false, true}));
        QVERIFY(!fl_is_outside());
        sAtName = [] {
            if (sNames == 3) {
                fl_refresh_outside();
                fl_refresh(); // the person's own wish counts more
            }
        };
        fl_refresh();
        QCOMPARE(sOutside, (std::vector<bool>{false, true, false, false}));
    }

    void refresh_keeps_what_is_typed_in_a_text_field()
    {
        m_dir->file("a");
        show();
        m_window->field->setFocus();
        QTest::keyClicks(m_window->field, QStringLiteral("half a pa"));
        fl_refresh_outside();
        QTest::keyClicks(m_window->field, QStringLiteral("th"));
        QCOMPARE(m_window->field->text(), QStringLiteral("half a path"));
        QCOMPARE(QApplication::focusWidget(), m_window->field);
    }

    void list_without_a_path_is_empty()
    {
        fl_refresh();
        QCOMPARE(gDir.count, 0);
        QCOMPARE(fl_row_count(), 0);
        QVERIFY(!m_window->list->grab().isNull());
        m_window->key(Qt::Key_Down);
        m_window->key(Qt::Key_End, Qt::ShiftModifier);
        m_window->key(Qt::Key_Space);
        fl_up();
        fl_down();
        QCOMPARE(fl_test_selected(), std::string());
    }
};

} // namespace tav

QTEST_MAIN(tav::FlRefreshTest)
#include "fl_refresh_qtest.moc"

// The selection as a whole, and sorting.
#include "fl_fixture.h"

namespace tav {

namespace {

// Owners and groups that only root could give: by owner m z a, by group z a m.
int x_owned(int fd, const char *name, struct stat *status, int flags)
{
    const int result = fstatat(fd, name, status, flags);
    status->st_uid = *name == 'a' ? 3 : *name == 'm' ? 1 : 2;
    status->st_gid = *name == 'a' ? 2 : *name == 'm' ? 3 : 1;
    return result;
}

} // namespace

class FlSelectTest : public QObject {
    Q_OBJECT

    std::unique_ptr<FlWindow> m_window;
    std::unique_ptr<TestDir> m_dir;
    DirCalls m_calls = gDirCalls;
    DirIdSource m_ids = gDirIds;

    // A directory and three files of growing size, oldest last.
    void show()
    {
        m_dir->dir("d");
        m_dir->file("a", 10);
        m_dir->file("b", 2000);
        m_dir->file("c", 300000);
        m_dir->mtime("a", 4000);
        m_dir->mtime("b", 3000);
        m_dir->mtime("c", 2000);
        m_dir->mtime("d", 1000);
        fl_setpath(m_dir->path().c_str());
    }

    void press(const char *header) const
    {
        QTest::mouseClick(m_window->window.findChild<QAbstractButton *>(QLatin1String(header)),
                          Qt::LeftButton);
    }

    QString image(const char *header) const
    {
        return m_window->window.findChild<QAbstractButton *>(QLatin1String(header))
            ->property("sort_image")
            .toString();
    }

private Q_SLOTS:
    void init()
    {
        m_dir = std::make_unique<TestDir>();
        m_window = std::make_unique<FlWindow>();
    }
    void cleanup()
    {
        gConfig->folders_first = 0;
        gDirCalls = m_calls;
        gDirIds = m_ids;
        dir_forget_names();
        m_window.reset();
        m_dir.reset();
    }

    void one_entry_is_selected_counted_and_let_go()
    {
        show();
        fl_select_index(0);
        fl_select_index(0); // once is enough
        fl_select_index(3);
        QCOMPARE(fl_test_selected(), std::string("a d"));
        QCOMPARE(gDir.nselected, 2);
        QCOMPARE(gDir.nseldirs, 1);
        fl_unselect_index(3);
        fl_unselect_index(3);
        QCOMPARE(fl_test_selected(), std::string("a"));
        fl_invert_index(0);
        fl_invert_index(1);
        QCOMPARE(fl_test_selected(), std::string("b"));
    }

    void indexes_out_of_range_select_nothing()
    {
        show();
        for (int index : {-3, DIR_NONE, DIR_PARENT, 4, 1000}) {
            fl_select_index(index);
            fl_unselect_index(index);
            fl_invert_index(index);
        }
        QCOMPARE(fl_test_selected(), std::string());
    }

    void whole_list_at_once()
    {
        show();
        fl_select_all();
        QCOMPARE(fl_test_selected(), std::string("a b c d"));
        fl_unselect_index(1);
        fl_unselect_index(3);
        fl_invert_all();
        QCOMPARE(fl_test_selected(), std::string("b d"));
        fl_unselect_all(nullptr);
        QCOMPARE(fl_test_selected(), std::string());
    }

    void status_updates_are_gathered()
    {
        m_dir->many("f", 50);
        fl_setpath(m_dir->path().c_str());
        QCoreApplication::processEvents();
        gHeard.statuses = 0;
        for (int i = 0; i < 50; ++i)
            fl_select_index(i);
        QCOMPARE(gHeard.statuses, 0);
        QTRY_COMPARE(gHeard.statuses, 1);
        QCoreApplication::processEvents();
        QCOMPARE(gHeard.statuses, 1);
        fl_unselect_all(nullptr);
        fl_status_flush();
        QCOMPARE(gHeard.statuses, 2);
        QCoreApplication::processEvents();
        QCOMPARE(gHeard.statuses, 2);
    }

    void header_sorts_and_turns_round()
    {
        show();
        QCOMPARE(image("fh_filename"), QStringLiteral("image_sort_up"));
        press("fh_filename");
        QCOMPARE(fl_test_names(), std::string("d c b a"));
        QCOMPARE(image("fh_filename"), QStringLiteral("image_sort_down"));
        press("fh_filename");
        QCOMPARE(fl_test_names(), std::string("a b c d"));
    }

    void another_header_keeps_the_direction()
    {
        show();
        press("fh_filename"); // descending now
        press("fh_date");
        QCOMPARE(fl_test_names(), std::string("a b c d"));
        QCOMPARE(image("fh_date"), QStringLiteral("image_sort_down"));
        QCOMPARE(image("fh_filename"), QString());
        press("fh_date");
        QCOMPARE(fl_test_names(), std::string("d c b a"));
        QCOMPARE(image("fh_date"), QStringLiteral("image_sort_up"));
    }

    void every_header_sorts_by_its_own_key_data()
    {
        QTest::addColumn<QByteArray>("header");
        QTest::addColumn<QByteArray>("names");
        QTest::newRow("size") << QByteArray("fh_size") << QByteArray("z m a");
        QTest::newRow("date") << QByteArray("fh_date") << QByteArray("m a z");
        QTest::newRow("permissions") << QByteArray("fh_permissions") << QByteArray("a z m");
        QTest::newRow("owner") << QByteArray("fh_owner") << QByteArray("m z a");
        QTest::newRow("group") << QByteArray("fh_group") << QByteArray("z a m");
        QTest::newRow("link ties, name decides") << QByteArray("fh_link") << QByteArray("a m z");
    }
    void every_header_sorts_by_its_own_key()
    {
        QFETCH(QByteArray, header);
        QFETCH(QByteArray, names);
        m_dir->file("a", 30, 0600);
        m_dir->file("m", 20, 0644);
        m_dir->file("z", 10, 0640);
        m_dir->mtime("m", 1000);
        m_dir->mtime("a", 2000);
        m_dir->mtime("z", 3000);
        gDirCalls.status = x_owned;
        gDirIds.user = gDirIds.group = [](uid_t) -> const char * { return nullptr; };
        dir_forget_names();
        fl_setpath(m_dir->path().c_str());
        press(header.constData());
        QCOMPARE(QByteArray::fromStdString(fl_test_names()), names);
    }

    void link_header_sorts_by_the_targets()
    {
        m_dir->link("a", "2");
        m_dir->link("m", "1");
        m_dir->link("z", "3");
        fl_setpath(m_dir->path().c_str());
        press("fh_link");
        QCOMPARE(fl_test_names(), std::string("m a z"));
        press("fh_link");
        QCOMPARE(fl_test_names(), std::string("z a m"));
    }

    void rebuilding_keeps_the_top_row()
    {
        m_dir->many("f", 200);
        fl_setpath(m_dir->path().c_str());
        m_window->list->set_top(60 * m_window->list->row_height());
        fl_update();
        QCOMPARE(m_window->list->top(), 60 * m_window->list->row_height());
        press("fh_size");
        QCOMPARE(m_window->list->top(), 60 * m_window->list->row_height());
    }

    void sorting_keeps_the_current_entry_and_the_selection()
    {
        show();
        fl_goto_index(1);
        fl_select_index(0);
        fl_select_index(2);
        press("fh_filename");
        QCOMPARE(fl_test_name(gDir.current), std::string("b"));
        QCOMPARE(fl_test_selected(), std::string("c a"));
        QVERIFY(gDir.entries[2]->flags & DIR_CURRENT);
    }

    void sorting_moves_the_first_entry_and_gives_it_the_flag()
    {
        show();
        fl_goto_index(0);
        press("fh_filename");
        QCOMPARE(gDir.current, 3);
        QVERIFY(gDir.entries[3]->flags & DIR_CURRENT);
        press("fh_filename");
        QCOMPARE(gDir.current, 0);
        QVERIFY(!(gDir.entries[0]->flags & DIR_CURRENT));
    }

    void sorting_leaves_the_parent_row_and_none_current()
    {
        show();
        for (int index : {DIR_PARENT, DIR_NONE}) {
            fl_goto_index(index);
            press("fh_size");
            QCOMPARE(gDir.current, index);
        }
    }

    void sorting_gives_the_focus_back_and_tells_others()
    {
        show();
        m_window->field->setFocus();
        const int notifies = gHeard.notifies;
        press("fh_size");
        QCOMPARE(QApplication::focusWidget(), m_window->list);
        QCOMPARE(gHeard.notifies, notifies + 1);
    }

    void sort_survives_a_change_of_directory()
    {
        show();
        m_dir->file("d/x", 1);
        m_dir->file("d/y", 9);
        press("fh_size");
        press("fh_size"); // descending
        fl_setpath(m_dir->at("d").c_str());
        QCOMPARE(fl_test_names(), std::string("y x"));
    }

    void folders_first_holds_in_both_directions()
    {
        gConfig->folders_first = 1;
        show();
        QCOMPARE(fl_test_names(), std::string("d a b c"));
        press("fh_filename");
        QCOMPARE(fl_test_names(), std::string("d c b a"));
    }

    void window_lives_while_a_long_list_is_sorted()
    {
        m_dir->many("f", 9000);
        fl_setpath(m_dir->path().c_str());
        static int sSlices, sReading;
        sSlices = sReading = 0;
        const DirHooks before = gDirHooks;
        gDirHooks.pending = [] {
            ++sSlices;
            sReading += fl_is_reading();
            fl_sort_cb(FL_COLUMN_SIZE); // waits, as a read would
            return true;
        };
        press("fh_filename");
        gDirHooks = before;
        QVERIFY(sSlices > 0);
        QCOMPARE(sReading, sSlices);
        QVERIFY(!fl_is_reading());
        QCOMPARE(image("fh_filename"), QStringLiteral("image_sort_down"));
        QCOMPARE(fl_test_name(gDir.count - 1), std::string("f000000"));
    }

    void refresh_asked_for_while_sorting_is_done_afterwards()
    {
        m_dir->many("f", 9000);
        fl_setpath(m_dir->path().c_str());
        m_dir->file("late");
        const DirHooks before = gDirHooks;
        gDirHooks.pending = [] {
            if (gDir.count == 9000)
                fl_refresh();
            return true;
        };
        press("fh_filename");
        gDirHooks = before;
        QCOMPARE(gDir.count, 9001);
    }

    void sorting_an_empty_list_and_a_bad_column()
    {
        m_dir->dir("e");
        fl_setpath(m_dir->at("e").c_str());
        press("fh_size");
        QCOMPARE(gDir.current, DIR_PARENT);
        fl_sort_cb(0);
        fl_sort_cb(8);
        QCOMPARE(image("fh_size"), QStringLiteral("image_sort_up"));
    }
};

} // namespace tav

QTEST_MAIN(tav::FlSelectTest)
#include "fl_select_qtest.moc"

// The texts and images of rows.
#include "fl_fixture.h"

#include "views/fl_row.h"

namespace tav {

namespace {

int x_index(const char *name) { return fl_find(name, FL_EXACT); }

} // namespace

class FlRowTest : public QObject {
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
        gOptions |= OPTION_PARENT_ROW;
        m_window.reset();
        m_dir.reset();
    }

    void thousands_are_separated_data()
    {
        QTest::addColumn<quint32>("number");
        QTest::addColumn<QByteArray>("text");
        QTest::newRow("zero") << 0U << QByteArray("0");
        QTest::newRow("three digits") << 999U << QByteArray("999");
        QTest::newRow("four digits") << 1000U << QByteArray("1,000");
        QTest::newRow("seven digits") << 1234567U << QByteArray("1,234,567");
        QTest::newRow("most") << 4294967295U << QByteArray("4,294,967,295");
    }
    void thousands_are_separated()
    {
        QFETCH(quint32, number);
        QFETCH(QByteArray, text);
        QCOMPARE(QByteArray(cvt2c(number)), text);
    }

    void text_has_the_columns_in_order()
    {
        const TestEnv zone("TZ", "UTC");
        tzset();
        m_dir->file("a.txt", 1234567, 0640);
        m_dir->mtime("a.txt", 1000000000); // 2001-09-09 01:46:40
        const DirIdSource before = gDirIds;
        gDirIds.user = [](uid_t) { return "anna"; };
        gDirIds.group = [](gid_t) { return "staff"; };
        dir_forget_names();
        fl_setpath(m_dir->path().c_str());
        QCOMPARE(fl_row_text(0), std::string("a.txt\t1,234,567\t 09/09/2001 01:46 AM\tanna\tstaff\t"
                                             "rw- r-- ---"));
        QCOMPARE(fl_row_column(0, 1), std::string("a.txt"));
        QCOMPARE(fl_row_column(0, 7), std::string());
        QCOMPARE(fl_row_column(0, 8), std::string());
        gDirIds = before;
        dir_forget_names();
    }

    void link_has_its_target_as_a_seventh_column()
    {
        m_dir->link("l", "some/where");
        fl_setpath(m_dir->path().c_str());
        const std::string text = fl_row_text(0);
        QCOMPARE(std::count(text.begin(), text.end(), '\t'), 6);
        QCOMPARE(text.substr(text.rfind('\t') + 1), std::string("some/where"));
    }

    void name_is_what_stands_before_the_first_tab_when_it_has_none()
    {
        m_dir->file("plain");
        fl_setpath(m_dir->path().c_str());
        const std::string text = fl_row_text(0);
        QCOMPARE(text.substr(0, text.find('\t')), std::string("plain"));
        QCOMPARE(fl_row_text(DIR_PARENT), std::string(".."));
        QCOMPARE(fl_row_text(DIR_NONE), std::string());
        QCOMPARE(fl_row_text(1), std::string());
    }

    void name_with_a_tab_keeps_its_columns_apart()
    {
        m_dir->file("a\tb", 7);
        fl_setpath(m_dir->path().c_str());
        QCOMPARE(fl_row_column(0, 1), std::string("a\tb"));
        QCOMPARE(fl_row_column(0, 2), std::string("7"));
    }

    void images_tell_the_kind()
    {
        m_dir->dir("folder");
        m_dir->file("file", 0, 0644);
        m_dir->file("exec", 0, 0744);
        m_dir->file("group exec", 0, 0655);
        m_dir->link("to folder", "folder");
        m_dir->link("to file", "file");
        m_dir->link("to exec", "exec");
        m_dir->link("to nothing", "nothing");
        m_dir->fifo("fifo", 0600);
        fl_setpath(m_dir->path().c_str());
        const std::pair<const char *, int> expected[] = {
            {"folder", FL_IMAGE_FOLDER},
            {"file", FL_IMAGE_FILE},
            {"exec", FL_IMAGE_EXEC},
            {"group exec", FL_IMAGE_FILE},
            {"to folder", FL_IMAGE_LINKED_FOLDER},
            {"to file", FL_IMAGE_LINKED_FILE},
            {"to exec", FL_IMAGE_LINKED_EXEC},
            {"to nothing", FL_IMAGE_BROKEN},
            {"fifo", FL_IMAGE_FILE},
        };
        for (const auto &[name, image] : expected)
            QCOMPARE(fl_row_image(x_index(name)), image);
        QCOMPARE(fl_row_image(DIR_PARENT), int(FL_IMAGE_PARENT));
    }

    void images_have_their_names_and_exist()
    {
        const char *const names[] = {"closed_folder", "file",        "exec",   "linked_folder",
                                     "linked_file",   "linked_exec", "parent", "image_broken_link",
                                     "image_file_cut"};
        for (int image = 0; image < FL_IMAGES; ++image) {
            QCOMPARE(QByteArray(fl_row_image_name(image)), QByteArray(names[image]));
            QVERIFY(!m_window->list->image(image).isNull());
        }
        QVERIFY(!fl_row_image_name(FL_IMAGES));
        QVERIFY(!fl_row_image_name(-1));
    }

    void cut_image_overrides_the_others()
    {
        m_dir->link("gone", "nothing");
        gHeard.cut = "gone";
        fl_setpath(m_dir->path().c_str());
        QCOMPARE(fl_row_image(0), int(FL_IMAGE_CUT));
        QVERIFY(gHeard.cut_fetches >= 1);
        gHeard.cut.clear();
        QCOMPARE(fl_row_image(0), int(FL_IMAGE_BROKEN));
    }

    void parent_row_is_first_but_not_in_the_root()
    {
        m_dir->file("a");
        fl_setpath(m_dir->path().c_str());
        QCOMPARE(fl_row_count(), 2);
        QCOMPARE(fl_row_index(0), DIR_PARENT);
        QCOMPARE(fl_row_index(1), 0);
        QCOMPARE(fl_row_index(2), DIR_NONE);
        QCOMPARE(fl_row_index(-1), DIR_NONE);
        QCOMPARE(gDir.entries[0]->item, 1);
        fl_setpath("/");
        QCOMPARE(fl_row_index(0), 0);
        QCOMPARE(fl_row_count(), gDir.count);
        QCOMPARE(gDir.entries[0]->item, 0);
    }

    void parent_row_is_an_option()
    {
        m_dir->file("a");
        gOptions &= ~OPTION_PARENT_ROW;
        fl_setpath(m_dir->path().c_str());
        QCOMPARE(fl_row_count(), 1);
        QCOMPARE(fl_row_of_index(DIR_PARENT), -1);
        gOptions |= OPTION_PARENT_ROW;
        QCOMPARE(fl_row_count(), 1); // until the rows are rebuilt
        fl_update();
        QCOMPARE(fl_row_count(), 2);
    }

    void names_of_any_bytes_are_listed_and_painted()
    {
        const std::string names[] = {"new\nline",
                                     "ta\tb",
                                     "\xff\xfe",
                                     "\xe2\x80\xae"
                                     "right to left",
                                     "<b>markup",
                                     "&mnemonic",
                                     std::string(255, 'x')};
        for (const std::string &name : names)
            m_dir->file(name);
        fl_setpath(m_dir->path().c_str());
        QCOMPARE(gDir.count, 7);
        for (const std::string &name : names) {
            QVERIFY(fl_find(name.c_str(), FL_EXACT) >= 0);
            QCOMPARE(fl_row_column(fl_find(name.c_str(), FL_EXACT), 1), name);
        }
        QVERIFY(!m_window->list->grab().isNull());
    }
};

} // namespace tav

QTEST_MAIN(tav::FlRowTest)
#include "fl_row_qtest.moc"

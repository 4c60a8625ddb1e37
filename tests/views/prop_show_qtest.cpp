// What the properties dialog shows.
#include "prop_fixture.h"

using namespace tav;
using namespace tav::test;

class PropShowTest : public QObject {
    Q_OBJECT

    std::unique_ptr<PropCase> case_;

private Q_SLOTS:
    void init() { case_ = std::make_unique<PropCase>(); }
    void cleanup()
    {
        case_.reset();
        QVERIFY(boxes_standing().isEmpty());
    }

    void with_nothing_selected_it_does_not_open()
    {
        case_->dir.file("a");
        fl_setpath(case_->dir.path().c_str());
        fl_unselect_all(nullptr);
        fm_inspect(nullptr);
        QVERIFY(!dialog_up(PROP_DIALOG));
        QVERIFY(!wblock_is_blocked(gBase));
    }

    void one_entry_is_shown_with_all_it_has()
    {
        case_->dir.file("a b", 1234567, 04751);
        const timespec times[2] = {{0, UTIME_NOW}, {1041724800, 0}}; // 2003-01-05
        QCOMPARE(utimensat(AT_FDCWD, case_->dir.at("a b").c_str(), times, 0), 0);
        case_->open({"a b"});
        QCOMPARE(dialog_up(PROP_DIALOG)->windowTitle(), QStringLiteral("File Information"));
        QCOMPARE(prop_field("pr_name")->text(), QStringLiteral("a b"));
        QVERIFY(!prop_field("pr_name")->isReadOnly());
        QCOMPARE(prop_label("pr_size")->text(), QStringLiteral("1,234,567"));
        QCOMPARE(prop_label("pr_modified")->text(), QStringLiteral("Sunday January 05, 2003"));
        QCOMPARE(prop_label("pr_location")->text(), QString::fromStdString(case_->dir.path()));
        QVERIFY(!prop_label("pr_symbolic")->isVisible() &&
                !prop_label("pr_symbolic_title")->isVisible());
        QVERIFY(!prop_label("pr_comment")->isVisible());
        const QStringList set = {QStringLiteral("pr_uread"),    QStringLiteral("pr_uwrite"),
                                 QStringLiteral("pr_uexec"),    QStringLiteral("pr_gread"),
                                 QStringLiteral("pr_gexec"),    QStringLiteral("pr_oexec"),
                                 QStringLiteral("pr_setuserid")};
        for (const QCheckBox *toggle : dialog_up(PROP_DIALOG)->findChildren<QCheckBox *>())
            QCOMPARE(toggle->isChecked(), set.contains(toggle->objectName()));
        QTRY_VERIFY(prop_field("pr_name")->hasFocus());
    }

    void a_link_shows_its_target()
    {
        case_->dir.file("a");
        QCOMPARE(symlink("a", case_->dir.at("l").c_str()), 0);
        case_->open({"l"});
        QVERIFY(prop_label("pr_symbolic")->isVisible() &&
                prop_label("pr_symbolic_title")->isVisible());
        QCOMPARE(prop_label("pr_symbolic")->text(), QStringLiteral("a"));
    }

    void several_entries_are_summed_up()
    {
        case_->dir.file("a", 1000, 0644);
        case_->dir.file("b", 24, 0755);
        case_->dir.folder("d", 0755);
        case_->open({"a", "b", "d"});
        QCOMPARE(prop_field("pr_name")->text(), QStringLiteral("a, b, d"));
        QVERIFY(prop_field("pr_name")->isReadOnly());
        QCOMPARE(prop_label("pr_comment")->text(),
                 QStringLiteral("(3 items: 1 directory, 2 files)"));
        QVERIFY(prop_label("pr_size")->isVisible());
        QVERIFY(!prop_label("pr_filetype")->isVisible() &&
                !prop_label("pr_filetype_title")->isVisible());
        QVERIFY(!prop_label("pr_modified")->isVisible() &&
                !prop_label("pr_modified_title")->isVisible());
        QVERIFY(!prop_label("pr_symbolic")->isVisible() &&
                !prop_label("pr_symbolic_title")->isVisible());
        QCOMPARE(prop_label("pr_location")->text(), QString::fromStdString(case_->dir.path()));
        QVERIFY(prop_toggle("pr_uread")->isChecked());
        QVERIFY(!prop_toggle("pr_uexec")->isChecked());
    }

    void the_comment_counts_data()
    {
        QTest::addColumn<int>("directories");
        QTest::addColumn<int>("files");
        QTest::addColumn<QString>("comment");
        QTest::newRow("one and one") << 1 << 1 << QStringLiteral("(2 items: 1 directory, 1 file)");
        QTest::newRow("directories") << 3 << 0 << QStringLiteral("(3 directories)");
        QTest::newRow("files") << 0 << 2 << QStringLiteral("(2 files)");
        QTest::newRow("many") << 2 << 3 << QStringLiteral("(5 items: 2 directories, 3 files)");
    }
    void the_comment_counts()
    {
        QFETCH(int, directories);
        QFETCH(int, files);
        QFETCH(QString, comment);
        for (int i = 0; i < directories; i++)
            case_->dir.folder(prop_numbered('d', i));
        for (int i = 0; i < files; i++)
            case_->dir.file(prop_numbered('f', i), 1);
        fl_setpath(case_->dir.path().c_str());
        fl_select_all();
        fm_inspect(nullptr);
        QCOMPARE(prop_label("pr_comment")->text(), comment);
        QCOMPARE(prop_label("pr_size")->isVisible(), files > 0);
        QCOMPARE(prop_label("pr_size_title")->isVisible(), files > 0);
    }

    void names_are_joined_while_they_stay_below_255_bytes()
    {
        DirListing listing = {};
        std::vector<DirEntry> entries(3, DirEntry{});
        const size_t lengths[] = {150, 101, 1};
        for (size_t i = 0; i < 3; i++) {
            memset(entries[i].name, 'a' + static_cast<int>(i), lengths[i]);
            entries[i].flags = DIR_SELECTED;
            entries[i].stat.st_mode = S_IFREG | 0644;
            listing.entries.push_back(&entries[i]);
        }
        listing.count = 2;
        QCOMPARE(prop_gather(listing).joined, std::string(150, 'a')); // 152 + 103 is 255
        entries[1].name[100] = 0;
        QCOMPARE(prop_gather(listing).joined, std::string(150, 'a') + ", " + std::string(100, 'b'));
        listing.count = 3;
        QCOMPARE(prop_gather(listing).joined, std::string(150, 'a') + ", " + std::string(100, 'b'));
        QCOMPARE(prop_gather(listing).names.size(), size_t(151 + 101 + 2));
    }

    void sizes_know_no_32_bits()
    {
        QCOMPARE(prop_size(0), std::string("0"));
        QCOMPARE(prop_size(999), std::string("999"));
        QCOMPARE(prop_size(1000), std::string("1,000"));
        QCOMPARE(prop_size(4294967296), std::string("4,294,967,296"));
        QVERIFY(prop_total(2147483647) != prop_total(2147483648));
        QVERIFY(prop_total(uint64_t(5) << 30).find('-') == std::string::npos);
        case_->dir.file("a", size_t(3) << 30);
        case_->dir.file("b", size_t(3) << 30);
        case_->open({"a", "b"});
        QCOMPARE(prop_label("pr_size")->text(),
                 QString::fromStdString(prop_total(uint64_t(6) << 30)));
    }

    void the_type_arrives_later_and_only_at_its_own_dialog()
    {
        static std::function<void(const std::string &)> sArrived;
        static std::string sPath;
        gPropHooks.filetype = [](const std::string &path, mode_t,
                                 std::function<void(const std::string &)> arrived) {
            sPath = path;
            sArrived = std::move(arrived);
        };
        case_->dir.file("a");
        case_->open({"a"});
        QCOMPARE(sPath, case_->dir.at("a"));
        QCOMPARE(prop_label("pr_filetype")->text(), QStringLiteral("File"));
        sArrived("ASCII text\n");
        QCOMPARE(prop_label("pr_filetype")->text(), QStringLiteral("ASCII text"));
        dialog_up(PROP_DIALOG)->reject();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        sArrived("too late");
    }

    void the_real_classifier_fills_the_type_in()
    {
        gPropHooks.filetype = fm_filetype;
        case_->dir.folder("d");
        case_->open({"d"});
        QTRY_VERIFY(prop_label("pr_filetype")->text().contains(QStringLiteral("irectory")));
    }

    void owner_and_group_are_shown_by_name()
    {
        const DirIdSource before = gDirIds;
        gDirIds = {[](uid_t) { return "ann"; },
                   [](gid_t) { return "a group with a name too long"; }};
        dir_forget_names();
        case_->dir.file("a");
        case_->open({"a"});
        gDirIds = before;
        dir_forget_names();
        QCOMPARE(prop_field("pr_owner")->text(), QStringLiteral("ann"));
        QVERIFY(prop_field("pr_group")->text().startsWith(QStringLiteral("a group with")));
    }

    void different_owners_leave_the_fields_empty()
    {
        case_->dir.file("a");
        case_->dir.file("b");
        fl_setpath(case_->dir.path().c_str());
        fl_select_all();
        gDir.entries[0]->stat.st_uid = gDir.entries[1]->stat.st_uid + 1;
        gDir.entries[0]->stat.st_gid = gDir.entries[1]->stat.st_gid + 1;
        fm_inspect(nullptr);
        QCOMPARE(prop_field("pr_owner")->text(), QString());
        QCOMPARE(prop_field("pr_group")->text(), QString());
    }

    void a_time_that_no_calendar_has_shows_no_date_data()
    {
        QTest::addColumn<qint64>("when");
        QTest::addColumn<QString>("shown");
        QTest::newRow("none") << qint64(INT64_MAX) << QString();
        QTest::newRow("far") << qint64(67767976000000000) << QStringLiteral("21474");
    }
    void a_time_that_no_calendar_has_shows_no_date()
    {
        QFETCH(qint64, when);
        QFETCH(QString, shown);
        case_->dir.file("a");
        fl_setpath(case_->dir.path().c_str());
        fl_select_all();
        gDir.entries[0]->stat.st_mtime = when;
        fm_inspect(nullptr);
        const QString text = prop_label("pr_modified")->text();
        QVERIFY2(shown.isEmpty() ? text.isEmpty() : text.contains(shown), qPrintable(text));
        QVERIFY(text.size() < 32);
    }
};

QTEST_MAIN(PropShowTest)
#include "prop_show_qtest.moc"

// What "Done" of the properties dialog does to names and modes.
#include "prop_fixture.h"

using namespace tav;
using namespace tav::test;

class PropTest : public QObject {
    Q_OBJECT

    std::unique_ptr<PropCase> case_;

private Q_SLOTS:
    void init() { case_ = std::make_unique<PropCase>(); }
    void cleanup()
    {
        case_.reset();
        QVERIFY(boxes_standing().isEmpty());
    }

    void done_without_a_change_changes_nothing()
    {
        case_->dir.file("a", 5, 01755);
        QCOMPARE(chmod(case_->dir.at("a").c_str(), 01755), 0);
        case_->open({"a"});
        prop_click_done();
        QCOMPARE(case_->dir.mode("a"), mode_t(01755));
        QVERIFY(!dialog_up(PROP_DIALOG));
        QVERIFY(!wblock_is_blocked(gBase));
        QCOMPARE(entry_name(gDir.current), std::string("a"));
    }

    void each_toggle_changes_its_bit_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<int>("bit");
        QTest::newRow("ur") << QByteArray("pr_uread") << 0400;
        QTest::newRow("uw") << QByteArray("pr_uwrite") << 0200;
        QTest::newRow("ux") << QByteArray("pr_uexec") << 0100;
        QTest::newRow("gr") << QByteArray("pr_gread") << 040;
        QTest::newRow("gw") << QByteArray("pr_gwrite") << 020;
        QTest::newRow("gx") << QByteArray("pr_gexec") << 010;
        QTest::newRow("or") << QByteArray("pr_oread") << 04;
        QTest::newRow("ow") << QByteArray("pr_owrite") << 02;
        QTest::newRow("ox") << QByteArray("pr_oexec") << 01;
        QTest::newRow("su") << QByteArray("pr_setuserid") << 04000;
        QTest::newRow("sg") << QByteArray("pr_setgroupid") << 02000;
    }
    void each_toggle_changes_its_bit()
    {
        QFETCH(QByteArray, name);
        QFETCH(int, bit);
        case_->dir.file("a", 0, 0);
        case_->open({"a"});
        prop_click_toggle(name.constData());
        prop_click_done();
        QCOMPARE(case_->dir.mode("a"), static_cast<mode_t>(bit));
    }

    void any_change_of_the_mode_takes_the_sticky_bit()
    {
        case_->dir.folder("d", 01777);
        QCOMPARE(chmod(case_->dir.at("d").c_str(), 01777), 0);
        case_->open({"d"});
        prop_click_toggle("pr_owrite");
        prop_click_done();
        QCOMPARE(case_->dir.mode("d"), mode_t(0775));
    }

    void many_entries_get_only_the_bits_that_were_touched()
    {
        case_->dir.file("a", 0, 0644);
        case_->dir.file("b", 0, 0600);
        case_->dir.folder("d", 0755);
        case_->open({"a", "b", "d"});
        prop_click_toggle("pr_gwrite");
        prop_click_done();
        QCOMPARE(case_->dir.mode("a"), mode_t(0664));
        QCOMPARE(case_->dir.mode("b"), mode_t(0620));
        QCOMPARE(case_->dir.mode("d"), mode_t(0775));
    }

    void a_toggle_touched_twice_takes_the_bit_from_all()
    {
        case_->dir.file("a", 0, 0644);
        case_->dir.file("b", 0, 0755);
        case_->open({"a", "b"});
        prop_click_toggle("pr_uexec");
        prop_click_toggle("pr_uexec");
        prop_click_done();
        QCOMPARE(case_->dir.mode("a"), mode_t(0644));
        QCOMPARE(case_->dir.mode("b"), mode_t(0655));
    }

    void what_others_changed_meanwhile_is_kept()
    {
        case_->dir.file("a", 0, 0644);
        case_->dir.file("b", 0, 0644);
        case_->open({"a", "b"});
        QCOMPARE(chmod(case_->dir.at("b").c_str(), 0700), 0);
        prop_click_toggle("pr_gwrite");
        prop_click_done();
        QCOMPARE(case_->dir.mode("b"), mode_t(0720));
    }

    void one_entry_gets_the_mode_that_is_shown_whatever_it_has_by_then()
    {
        case_->dir.file("a", 0, 0644);
        case_->open({"a"});
        QCOMPARE(chmod(case_->dir.at("a").c_str(), 0700), 0);
        prop_click_toggle("pr_gwrite");
        prop_click_done();
        QCOMPARE(case_->dir.mode("a"), mode_t(0664));
    }

    void one_entry_that_vanished_cannot_be_changed()
    {
        case_->dir.file("a", 0, 0644);
        case_->open({"a"});
        unlink(case_->dir.at("a").c_str());
        prop_click_toggle("pr_gwrite");
        QCOMPARE(prop_done_says(), QStringLiteral("Error: Unable to change permissions of 'a'"));
        QVERIFY(!dialog_up(PROP_DIALOG));
    }

    void cancel_and_escape_change_nothing()
    {
        case_->dir.file("a", 0, 0644);
        case_->open({"a"});
        prop_edit("pr_name", "b");
        prop_click_toggle("pr_oexec");
        dialog_click(PROP_DIALOG, "pr_cancel");
        QVERIFY(!dialog_up(PROP_DIALOG));
        fm_inspect(nullptr);
        prop_edit("pr_name", "b");
        QTest::keyClick(dialog_up(PROP_DIALOG), Qt::Key_Escape);
        QVERIFY(!dialog_up(PROP_DIALOG));
        QVERIFY(case_->dir.has("a") && !case_->dir.has("b"));
        QCOMPARE(case_->dir.mode("a"), mode_t(0644));
        QVERIFY(!wblock_is_blocked(gBase));
    }

    void a_new_name_is_given_and_the_cursor_goes_there()
    {
        case_->dir.file("a");
        case_->dir.file("z");
        case_->open({"a"});
        prop_edit("pr_name", "new & <b>");
        QTest::keyClick(prop_field("pr_name"), Qt::Key_Return);
        QVERIFY(case_->dir.has("new & <b>") && !case_->dir.has("a"));
        QCOMPARE(entry_name(gDir.current), std::string("new & <b>"));
    }

    void any_name_that_a_file_can_have_is_given_data()
    {
        QTest::addColumn<QByteArray>("name");
        for (const char *name : {"two\nlines", "-rf", " blanks ", "<b>bold<b>", "&amp;", "a|b*?[c]",
                                 "...", "\\xE9", "\xC3\xA4\xF0\x9F\x98\x80", "100%s%n"})
            QTest::newRow(name) << QByteArray(name);
    }
    void any_name_that_a_file_can_have_is_given()
    {
        QFETCH(QByteArray, name);
        case_->dir.file("a");
        case_->dir.file("z");
        case_->open({"a"});
        prop_edit("pr_name", name.constData());
        QCOMPARE(prop_done_says(), QStringLiteral("nothing"));
        QVERIFY(case_->dir.has(name.toStdString()) && !case_->dir.has("a"));
        QCOMPARE(entry_name(gDir.current), name.toStdString());
    }

    void names_in_messages_are_plain_text()
    {
        case_->dir.file("a");
        case_->dir.file("<b>&x%s");
        case_->open({"a"});
        prop_edit("pr_name", "<b>&x%s");
        QCOMPARE(prop_done_says(), QStringLiteral("Error: File name '<b>&x%s' already exists"));
    }

    void renaming_to_what_exists_is_refused_and_replaces_nothing()
    {
        case_->dir.file("a", 1);
        case_->dir.file("b", 2);
        case_->open({"a"});
        prop_edit("pr_name", "b");
        QCOMPARE(prop_done_says(), QStringLiteral("Error: File name 'b' already exists"));
        QVERIFY(case_->dir.has("a"));
        QCOMPARE(std::filesystem::file_size(case_->dir.at("b")), uintmax_t(2));
        QVERIFY(!dialog_up(PROP_DIALOG));
    }

    void a_name_that_appears_after_the_dialog_opened_is_not_replaced()
    {
        case_->dir.file("a", 1);
        case_->open({"a"});
        case_->dir.file("b", 2);
        prop_edit("pr_name", "b");
        QCOMPARE(prop_done_says(), QStringLiteral("Error: File name 'b' already exists"));
        QCOMPARE(std::filesystem::file_size(case_->dir.at("b")), uintmax_t(2));
    }

    void names_that_cannot_be_given_are_reported_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QString>("message");
        QTest::newRow("empty") << QByteArray() << QStringLiteral("nothing");
        QTest::newRow("dot") << QByteArray(".")
                             << QStringLiteral("Error: File name '.' already exists");
        QTest::newRow("two dots") << QByteArray("..")
                                  << QStringLiteral("Error: File name '..' already exists");
        QTest::newRow("root") << QByteArray("/") << QStringLiteral("Error: Unable to rename '/'.");
        QTest::newRow("slash") << QByteArray("d/x")
                               << QStringLiteral("Error: Unable to rename 'd/x'.");
        QTest::newRow("slash at the end")
            << QByteArray("d/") << QStringLiteral("Error: Unable to rename 'd/'.");
    }
    void names_that_cannot_be_given_are_reported()
    {
        QFETCH(QByteArray, name);
        QFETCH(QString, message);
        case_->dir.file("a");
        case_->dir.folder("d");
        case_->open({"a"});
        prop_edit("pr_name", name.constData());
        QCOMPARE(prop_done_says(), message);
        QVERIFY(case_->dir.has("a"));
        QVERIFY(!case_->dir.has("d/x"));
    }

    void names_of_255_bytes_are_given_and_of_256_refused()
    {
        case_->dir.file("a");
        case_->open({"a"});
        prop_edit("pr_name", std::string(254, 'n').c_str());
        prop_click_done();
        QVERIFY(case_->dir.has(std::string(254, 'n')));
        select_names({std::string(254, 'n').c_str()});
        fm_inspect(nullptr);
        prop_edit("pr_name", std::string(255, 'n').c_str());
        prop_click_done();
        QVERIFY(case_->dir.has(std::string(255, 'n')));
        fm_inspect(nullptr);
        select_names({std::string(255, 'n').c_str()});
        fm_inspect(nullptr);
        prop_edit("pr_name", std::string(256, 'n').c_str());
        QVERIFY(prop_done_says().startsWith(QStringLiteral("Error: Unable to rename 'nnn")));
        QVERIFY(case_->dir.has(std::string(255, 'n')));
    }

    void a_name_that_is_no_text_survives_a_change_of_the_mode()
    {
        case_->dir.file("caf\xE9\n", 0, 0644);
        case_->open({"caf\xE9\n"});
        QCOMPARE(prop_field("pr_name")->text(), QStringLiteral("caf\\xE9\u240A"));
        prop_click_toggle("pr_oexec");
        prop_click_done();
        QVERIFY(case_->dir.has("caf\xE9\n"));
        QCOMPARE(case_->dir.mode("caf\xE9\n"), mode_t(0645));
    }

    void a_name_that_is_no_text_keeps_what_was_not_edited()
    {
        case_->dir.file("caf\xE9\n.c");
        case_->open({"caf\xE9\n.c"});
        QLineEdit *field = prop_field("pr_name");
        QTest::keyClick(field, Qt::Key_End);
        QTest::keyClick(field, Qt::Key_Backspace);
        QTest::keyClicks(field, QStringLiteral("txt"));
        prop_click_done();
        QVERIFY(case_->dir.has("caf\xE9\n.txt"));
        QCOMPARE(entry_name(gDir.current), std::string("caf\xE9\n.txt"));
    }

    void an_entry_that_vanished_is_reported_and_the_others_are_done()
    {
        case_->dir.file("a", 0, 0644);
        case_->dir.file("b", 0, 0644);
        case_->open({"a", "b"});
        unlink(case_->dir.at("a").c_str());
        prop_click_toggle("pr_oexec");
        QCOMPARE(prop_done_says(), QStringLiteral("Error: Unable to change permissions of 'a'"));
        QCOMPARE(case_->dir.mode("b"), mode_t(0645));
        QVERIFY(!dialog_up(PROP_DIALOG));
    }

    void a_vanished_entry_cannot_be_renamed()
    {
        case_->dir.file("a");
        case_->open({"a"});
        unlink(case_->dir.at("a").c_str());
        prop_edit("pr_name", "b");
        QCOMPARE(prop_done_says(), QStringLiteral("Error: Unable to rename 'b'."));
    }

    void the_list_may_do_what_it_likes_meanwhile()
    {
        case_->dir.file("m", 0, 0644);
        case_->open({"m"});
        case_->dir.file("a");
        fl_refresh();
        fl_unselect_all(nullptr);
        prop_click_toggle("pr_oexec");
        prop_click_done();
        QCOMPARE(case_->dir.mode("m"), mode_t(0645));
        QCOMPARE(case_->dir.mode("a"), mode_t(0644));
    }

    void many_failures_are_counted_after_the_first_few()
    {
        for (int i = 0; i < 20; i++)
            case_->dir.file(prop_numbered('f', 10 + i), 0, 0644);
        fl_setpath(case_->dir.path().c_str());
        fl_select_all();
        fm_inspect(nullptr);
        for (int i = 0; i < 20; i++)
            unlink(case_->dir.at(prop_numbered('f', 10 + i)).c_str());
        QStringList texts;
        QTimer answer;
        connect(&answer, &QTimer::timeout, this, [&] {
            for (QMessageBox *box : boxes_standing()) {
                texts.append(boxes_text(box));
                box->close();
            }
        });
        answer.start(2);
        prop_click_toggle("pr_oexec");
        prop_click_done();
        QVERIFY(texts.contains(QStringLiteral("Unable to change permissions of 'f10'")));
        QVERIFY(texts.contains(QStringLiteral("15 more items could not be changed")));
        QVERIFY(texts.size() < 10);
    }

    void a_hundred_thousand_entries_open_and_are_changed()
    {
        constexpr int COUNT = 100'000;
        const OwnDir many(access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp"); // a disk is slow
        const mode_t mask = umask(0);
        for (int i = 0; i < COUNT; i++)
            QCOMPARE(mknod(many.at(prop_numbered('f', i)).c_str(), S_IFREG | 0644, 0), 0);
        umask(mask);
        fl_setpath(many.path().c_str());
        fl_select_all();
        fm_inspect(nullptr);
        QCOMPARE(prop_label("pr_comment")->text(), QStringLiteral("(%1 files)").arg(COUNT));
        prop_click_toggle("pr_oexec");
        prop_click_done();
        for (int i = 0; i < COUNT; i++)
            QCOMPARE(many.mode(prop_numbered('f', i)), mode_t(0645));
    }
};

QTEST_MAIN(PropTest)
#include "prop_qtest.moc"

// Owners and groups, and what an ordinary user may do.
#include "prop_fixture.h"

using namespace tav;
using namespace tav::test;

namespace {

// What chown was asked for; -1 stands for an id that stays.
struct Asked {
    std::string name;
    long uid, gid;
};
std::vector<Asked> sAsked;
bool sRefused; // chown fails

int x_chown(int directory, const char *name, uid_t uid, gid_t gid)
{
    const auto id = [](uint32_t value) { return value == UINT32_MAX ? -1L : long(value); };
    sAsked.push_back({name, id(uid), id(gid)});
    if (sRefused) {
        errno = EPERM;
        return -1;
    }
    struct stat now = {};
    fstatat(directory, name, &now, 0);
    return fchmodat(directory, name, now.st_mode & 01777, 0); // as the system does
}

// The privileged user's view, with "ann" (1001), "4711" (1002) and the group "staff" (1003).
void x_be_privileged()
{
    sAsked.clear();
    sRefused = false;
    gPropSystem.may_give_away = [] { return true; };
    gPropSystem.user = [](const char *name) -> std::optional<uid_t> {
        if (std::string_view(name) == "ann")
            return 1001;
        return std::string_view(name) == "4711" ? std::optional<uid_t>(1002) : std::nullopt;
    };
    gPropSystem.group = [](const char *name) {
        return std::string_view(name) == "staff" ? std::optional<gid_t>(1003) : std::nullopt;
    };
    gPropSystem.chown = x_chown;
}

} // namespace

class PropOwnerTest : public QObject {
    Q_OBJECT

    std::unique_ptr<PropCase> case_;

private Q_SLOTS:
    void init() { case_ = std::make_unique<PropCase>(); }
    void cleanup()
    {
        case_.reset();
        QVERIFY(boxes_standing().isEmpty());
    }

    // As the privileged user.

    void names_and_numbers_are_applied_data()
    {
        QTest::addColumn<QByteArray>("owner");
        QTest::addColumn<QByteArray>("group");
        QTest::addColumn<int>("uid");
        QTest::addColumn<int>("gid");
        QTest::newRow("names") << QByteArray("ann") << QByteArray("staff") << 1001 << 1003;
        QTest::newRow("numbers") << QByteArray("1234") << QByteArray("1235") << 1234 << 1235;
        QTest::newRow("a name of digits") << QByteArray("4711") << QByteArray() << 1002 << -1;
        QTest::newRow("only the group") << QByteArray() << QByteArray("staff") << -1 << 1003;
        QTest::newRow("zeros before")
            << QByteArray("000000000000000042") << QByteArray() << 42 << -1;
        QTest::newRow("the last id") << QByteArray("2147483647") << QByteArray() << INT_MAX << -1;
    }
    void names_and_numbers_are_applied()
    {
        QFETCH(QByteArray, owner);
        QFETCH(QByteArray, group);
        QFETCH(int, uid);
        QFETCH(int, gid);
        x_be_privileged();
        case_->dir.file("a");
        case_->open({"a"});
        QVERIFY(!prop_field("pr_owner")->isReadOnly() && !prop_field("pr_group")->isReadOnly());
        prop_edit("pr_owner", owner.constData());
        prop_edit("pr_group", group.constData());
        prop_click_done();
        QCOMPARE(sAsked.size(), size_t(1));
        QCOMPARE(sAsked[0].name, std::string("a"));
        QCOMPARE(sAsked[0].uid, long(uid));
        QCOMPARE(sAsked[0].gid, long(gid));
    }

    void the_owner_that_it_has_is_not_given_again()
    {
        x_be_privileged();
        case_->dir.file("a");
        case_->open({"a"});
        prop_edit("pr_owner", std::to_string(geteuid()).c_str());
        prop_edit("pr_group", std::to_string(case_->dir.group("a")).c_str());
        prop_click_done();
        QVERIFY(sAsked.empty());
    }

    void many_entries_change_hands_but_only_where_it_was_asked_for()
    {
        x_be_privileged();
        case_->dir.file("a", 0, 0644);
        case_->dir.file("b", 0, 0755);
        case_->open({"a", "b"});
        prop_click_toggle("pr_oread");
        prop_click_done();
        QVERIFY(sAsked.empty());
        select_names({"a", "b"});
        fm_inspect(nullptr);
        prop_edit("pr_owner", "ann");
        prop_click_done();
        QCOMPARE(sAsked.size(), size_t(2));
        QCOMPARE(case_->dir.mode("a"), mode_t(0640));
        QCOMPARE(case_->dir.mode("b"), mode_t(0751));
    }

    void a_bit_that_changing_hands_took_is_set_again_when_asked_for()
    {
        x_be_privileged();
        case_->dir.file("a", 0, 0755);
        case_->dir.file("b", 0, 04755);
        case_->open({"a", "b"});
        prop_edit("pr_owner", "ann");
        prop_click_toggle("pr_setuserid");
        prop_click_done();
        QCOMPARE(case_->dir.mode("a"), mode_t(04755));
        QCOMPARE(case_->dir.mode("b"), mode_t(04755));
    }

    void ownership_that_is_refused_stops_the_entry()
    {
        x_be_privileged();
        sRefused = true;
        case_->dir.file("a", 0, 0644);
        case_->open({"a"});
        prop_edit("pr_owner", "ann");
        prop_click_toggle("pr_oexec");
        QCOMPARE(prop_done_says(), QStringLiteral("Error: Unable to change ownership of 'a'"));
        QCOMPARE(case_->dir.mode("a"), mode_t(0644));
        QVERIFY(!dialog_up(PROP_DIALOG));
    }

    void owners_that_do_not_exist_are_reported_once_data()
    {
        QTest::addColumn<QByteArray>("field");
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QString>("message");
        QTest::newRow("owner") << QByteArray("pr_owner") << QByteArray("no such")
                               << QStringLiteral("Error: Invalid owner_id 'no such'");
        QTest::newRow("group") << QByteArray("pr_group") << QByteArray("no&such")
                               << QStringLiteral("Error: Invalid group 'no&such'");
        QTest::newRow("past 32 bits") << QByteArray("pr_owner") << QByteArray("4294967296")
                                      << QStringLiteral("Error: Invalid owner_id '4294967296'");
        QTest::newRow("none") << QByteArray("pr_owner") << QByteArray("4294967295")
                              << QStringLiteral("Error: Invalid owner_id '4294967295'");
        QTest::newRow("negative") << QByteArray("pr_group") << QByteArray("-1")
                                  << QStringLiteral("Error: Invalid group '-1'");
        QTest::newRow("very long")
            << QByteArray("pr_group") << QByteArray(20, '9')
            << QStringLiteral("Error: Invalid group '%1'").arg(QString(20, QLatin1Char('9')));
    }
    void owners_that_do_not_exist_are_reported_once()
    {
        QFETCH(QByteArray, field);
        QFETCH(QByteArray, text);
        QFETCH(QString, message);
        x_be_privileged();
        case_->dir.file("a", 0, 0644);
        case_->dir.file("b", 0, 0644);
        case_->open({"a", "b"});
        prop_edit(field.constData(), text.constData());
        prop_click_toggle("pr_oexec");
        QCOMPARE(prop_done_says(), message);
        QCOMPARE(case_->dir.mode("a"), mode_t(0644));
        QCOMPARE(case_->dir.mode("b"), mode_t(0644));
    }

    void a_cut_user_name_that_was_not_edited_is_not_applied()
    {
        PropChange change;
        change.owner = "averyverylongna";
        std::string name = "a", message;
        QCOMPARE(prop_apply(AT_FDCWD, name, change, message), -1);
        QCOMPARE(message, std::string("Invalid owner_id 'averyverylongna'"));
        case_->dir.file("a", 0, 0644);
        case_->open({"a"});
        prop_field("pr_owner")->setText(QStringLiteral("averyverylongna")); // as shown, not typed
        prop_click_toggle("pr_oexec");
        prop_click_done();
        QCOMPARE(case_->dir.mode("a"), mode_t(0645));
    }

    // The system's own table.

    void the_system_knows_its_users()
    {
        QCOMPARE(gPropSystem.user("root"), std::optional<uid_t>(0));
        QCOMPARE(gPropSystem.group("root"), std::optional<gid_t>(0));
        QVERIFY(!gPropSystem.user("no such user") && !gPropSystem.group("no such group"));
        QCOMPARE(gPropSystem.may_give_away(), geteuid() == 0);
        case_->dir.file("a");
        const int directory = ::open(case_->dir.path().c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
        QCOMPARE(gPropSystem.chown(directory, "a", geteuid(), case_->dir.group("a")), 0);
        QCOMPARE(gPropSystem.chown(directory, "none", geteuid(), case_->dir.group("a")), -1);
        close(directory);
    }

    void an_ordinary_user_reads_owner_and_group_only()
    {
        case_->dir.file("a");
        const Ordinary ordinary;
        case_->open({"a"});
        QVERIFY(prop_field("pr_owner")->isReadOnly());
        QVERIFY(prop_field("pr_group")->isReadOnly());
        QTest::keyClicks(prop_field("pr_owner"), QStringLiteral("x"));
        QVERIFY(!prop_field("pr_owner")->isModified());
    }

    void an_ordinary_user_changes_what_is_its_own()
    {
        QCOMPARE(chmod(case_->dir.path().c_str(), 0777), 0);
        const Ordinary ordinary;
        case_->dir.file("mine", 0, 0644);
        case_->open({"mine"});
        prop_click_toggle("pr_oread");
        prop_click_done();
        QCOMPARE(case_->dir.mode("mine"), mode_t(0640));
    }

    void an_ordinary_user_is_told_what_may_not_be_changed()
    {
        const Ordinary ordinary;
        fl_setpath("/proc/self"); // where nobody may change a mode
        select_names({"status"});
        fm_inspect(nullptr);
        prop_click_toggle("pr_oexec");
        QCOMPARE(prop_done_says(),
                 QStringLiteral("Error: Unable to change permissions of 'status'"));
        QVERIFY(!dialog_up(PROP_DIALOG));
    }

    void in_a_read_only_directory_nothing_is_renamed()
    {
        case_->dir.file("a");
        QCOMPARE(chmod(case_->dir.path().c_str(), 0555), 0);
        {
            const Ordinary ordinary;
            case_->open({"a"});
            prop_edit("pr_name", "b");
            QCOMPARE(prop_done_says(), QStringLiteral("Error: Unable to rename 'b'."));
        }
        QVERIFY(case_->dir.has("a"));
        QCOMPARE(chmod(case_->dir.path().c_str(), 0755), 0);
    }

    void ownership_that_may_not_be_changed_is_reported()
    {
        QCOMPARE(chmod(case_->dir.path().c_str(), 0777), 0);
        const Ordinary ordinary;
        case_->dir.file("mine");
        const int directory = ::open(case_->dir.path().c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
        PropChange change;
        change.owner = "root";
        std::string name = "mine", message;
        QCOMPARE(prop_apply(directory, name, change, message), -1);
        QCOMPARE(message, std::string("Unable to change ownership of 'mine'"));
        close(directory);
    }
};

QTEST_MAIN(PropOwnerTest)
#include "prop_owner_qtest.moc"

// The properties dialog, driven through its widgets. What only an ordinary user can see go wrong
// runs with the identity of one.
#include "commands/fm_dlg.h"
#include "support/dialogs.h"
#include "views/prop.h"
#include "views/prop_apply.h"
#include "views/prop_gather.h"

#include <QCheckBox>
#include <QLineEdit>
#include <grp.h>
#include <pwd.h>

using namespace tav;
using namespace tav::test;

namespace {

constexpr char DIALOG[] = "property_dlg";
constexpr uid_t ORDINARY = 65534; // an id without privileges

QLabel *x_label(const char *name) { return dialog_find<QLabel>(DIALOG, name); }
QLineEdit *x_field(const char *name) { return dialog_find<QLineEdit>(DIALOG, name); }
QCheckBox *x_toggle(const char *name) { return dialog_find<QCheckBox>(DIALOG, name); }

void x_click_toggle(const char *name)
{
    QCheckBox *toggle = x_toggle(name);
    QTest::mouseClick(toggle, Qt::LeftButton, {}, QPoint(8, toggle->height() / 2));
}

// Replaces the text of a field as a person does.
void x_edit(const char *name, const char *text)
{
    QLineEdit *field = x_field(name);
    field->selectAll();
    QTest::keyClick(field, Qt::Key_Delete);
    field->insert(QString::fromUtf8(text));
}

std::string x_numbered(char letter, int number)
{
    std::string name(1, letter);
    name += std::to_string(number);
    return name;
}

void x_done() { dialog_click(DIALOG, "pr_done"); }

QString x_done_says()
{
    auto seen = boxes_answer_next(QStringLiteral("&Continue"));
    x_done();
    return seen->came ? seen->title + QStringLiteral(": ") + seen->text : QStringLiteral("nothing");
}

// Runs as an ordinary user while it lives.
class Ordinary {
public:
    Ordinary()
    {
        if (geteuid() == 0 && (setegid(ORDINARY) != 0 || seteuid(ORDINARY) != 0))
            qFatal("cannot become an ordinary user");
    }
    ~Ordinary()
    {
        if (getuid() == 0 && (seteuid(0) != 0 || setegid(0) != 0))
            qFatal("cannot come back");
    }
    Ordinary(const Ordinary &) = delete;
    Ordinary &operator=(const Ordinary &) = delete;
};

} // namespace

class PropTest : public QObject {
    Q_OBJECT

    std::unique_ptr<OwnDir> dir_;
    std::unique_ptr<MainWindow> main_;

    void open(std::initializer_list<const char *> names)
    {
        fl_setpath(dir_->path().c_str());
        select_names(names);
        fm_inspect(nullptr);
        QVERIFY(dialog_up(DIALOG));
    }

private Q_SLOTS:
    void init()
    {
        dir_ = std::make_unique<OwnDir>();
        main_ = std::make_unique<MainWindow>();
        gPropHooks = {};
    }
    void cleanup()
    {
        if (QDialog *dialog = dialog_up(DIALOG))
            dialog->reject();
        main_.reset();
        dir_.reset();
        QVERIFY(boxes_standing().isEmpty());
    }

    // What it shows.

    void with_nothing_selected_it_does_not_open()
    {
        dir_->file("a");
        fl_setpath(dir_->path().c_str());
        fl_unselect_all(nullptr);
        fm_inspect(nullptr);
        QVERIFY(!dialog_up(DIALOG));
        QVERIFY(!wblock_is_blocked(gBase));
    }

    void one_entry_is_shown_with_all_it_has()
    {
        dir_->file("a b", 1234567, 04751);
        const timespec times[2] = {{0, UTIME_NOW}, {1041724800, 0}}; // 2003-01-05
        QCOMPARE(utimensat(AT_FDCWD, dir_->at("a b").c_str(), times, 0), 0);
        open({"a b"});
        QCOMPARE(dialog_up(DIALOG)->windowTitle(), QStringLiteral("File Information"));
        QCOMPARE(x_field("pr_name")->text(), QStringLiteral("a b"));
        QVERIFY(!x_field("pr_name")->isReadOnly());
        QCOMPARE(x_label("pr_size")->text(), QStringLiteral("1,234,567"));
        QCOMPARE(x_label("pr_modified")->text(), QStringLiteral("Sunday January 05, 2003"));
        QCOMPARE(x_label("pr_location")->text(), QString::fromStdString(dir_->path()));
        QVERIFY(!x_label("pr_symbolic")->isVisible() && !x_label("pr_symbolic_title")->isVisible());
        QVERIFY(!x_label("pr_comment")->isVisible());
        const QStringList set = {QStringLiteral("pr_uread"),    QStringLiteral("pr_uwrite"),
                                 QStringLiteral("pr_uexec"),    QStringLiteral("pr_gread"),
                                 QStringLiteral("pr_gexec"),    QStringLiteral("pr_oexec"),
                                 QStringLiteral("pr_setuserid")};
        for (const QCheckBox *toggle : dialog_up(DIALOG)->findChildren<QCheckBox *>())
            QCOMPARE(toggle->isChecked(), set.contains(toggle->objectName()));
        QTRY_VERIFY(x_field("pr_name")->hasFocus());
    }

    void owner_and_group_are_shown_by_name()
    {
        dir_->file("a");
        open({"a"});
        QCOMPARE(x_field("pr_owner")->text(), QString::fromUtf8(getpwuid(geteuid())->pw_name));
        QCOMPARE(x_field("pr_group")->text(), QString::fromUtf8(getgrgid(getegid())->gr_name));
    }

    void a_link_shows_its_target()
    {
        dir_->file("a");
        QCOMPARE(symlink("a", dir_->at("l").c_str()), 0);
        open({"l"});
        QVERIFY(x_label("pr_symbolic")->isVisible() && x_label("pr_symbolic_title")->isVisible());
        QCOMPARE(x_label("pr_symbolic")->text(), QStringLiteral("a"));
    }

    void several_entries_are_summed_up()
    {
        dir_->file("a", 1000, 0644);
        dir_->file("b", 24, 0755);
        dir_->folder("d", 0755);
        open({"a", "b", "d"});
        QCOMPARE(x_field("pr_name")->text(), QStringLiteral("a, b, d"));
        QVERIFY(x_field("pr_name")->isReadOnly());
        QCOMPARE(x_label("pr_comment")->text(), QStringLiteral("(3 items: 1 directory, 2 files)"));
        QVERIFY(x_label("pr_size")->isVisible());
        QVERIFY(!x_label("pr_filetype")->isVisible() && !x_label("pr_filetype_title")->isVisible());
        QVERIFY(!x_label("pr_modified")->isVisible() && !x_label("pr_modified_title")->isVisible());
        QVERIFY(!x_label("pr_symbolic")->isVisible() && !x_label("pr_symbolic_title")->isVisible());
        QCOMPARE(x_label("pr_location")->text(), QString::fromStdString(dir_->path()));
        QVERIFY(x_toggle("pr_uread")->isChecked());
        QVERIFY(!x_toggle("pr_uexec")->isChecked());
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
            dir_->folder(x_numbered('d', i));
        for (int i = 0; i < files; i++)
            dir_->file(x_numbered('f', i), 1);
        fl_setpath(dir_->path().c_str());
        fl_select_all();
        fm_inspect(nullptr);
        QCOMPARE(x_label("pr_comment")->text(), comment);
        QCOMPARE(x_label("pr_size")->isVisible(), files > 0);
        QCOMPARE(x_label("pr_size_title")->isVisible(), files > 0);
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
        dir_->file("a", size_t(3) << 30);
        dir_->file("b", size_t(3) << 30);
        open({"a", "b"});
        QCOMPARE(x_label("pr_size")->text(), QString::fromStdString(prop_total(uint64_t(6) << 30)));
    }

    void different_owners_leave_the_field_empty_and_change_nothing()
    {
        if (geteuid() != 0)
            return; // only the privileged user can make such files
        dir_->file("a", 0, 0644);
        dir_->file("b", 0, 0644);
        QCOMPARE(chown(dir_->at("b").c_str(), 1234, 1235), 0);
        open({"a", "b"});
        QCOMPARE(x_field("pr_owner")->text(), QString());
        QCOMPARE(x_field("pr_group")->text(), QString());
        x_click_toggle("pr_oread");
        x_done();
        struct stat info = {};
        QCOMPARE(stat(dir_->at("b").c_str(), &info), 0);
        QCOMPARE(info.st_uid, uid_t(1234));
        QCOMPARE(info.st_mode & 07777, mode_t(0640));
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
        dir_->file("a");
        open({"a"});
        QCOMPARE(sPath, dir_->at("a"));
        QCOMPARE(x_label("pr_filetype")->text(), QStringLiteral("File"));
        sArrived("ASCII text\n");
        QCOMPARE(x_label("pr_filetype")->text(), QStringLiteral("ASCII text"));
        dialog_up(DIALOG)->reject();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        sArrived("too late");
    }

    void the_real_classifier_fills_the_type_in()
    {
        gPropHooks.filetype = fm_filetype;
        dir_->folder("d");
        open({"d"});
        QTRY_VERIFY(x_label("pr_filetype")->text().contains(QStringLiteral("irectory")));
    }

    // What it does.

    void done_without_a_change_changes_nothing()
    {
        dir_->file("a", 5, 01755);
        QCOMPARE(chmod(dir_->at("a").c_str(), 01755), 0);
        open({"a"});
        x_done();
        QCOMPARE(dir_->mode("a"), mode_t(01755));
        QVERIFY(!dialog_up(DIALOG));
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
        dir_->file("a", 0, 0);
        open({"a"});
        x_click_toggle(name.constData());
        x_done();
        QCOMPARE(dir_->mode("a"), static_cast<mode_t>(bit));
    }

    void any_change_of_the_mode_takes_the_sticky_bit()
    {
        dir_->folder("d", 01777);
        QCOMPARE(chmod(dir_->at("d").c_str(), 01777), 0);
        open({"d"});
        x_click_toggle("pr_owrite");
        x_done();
        QCOMPARE(dir_->mode("d"), mode_t(0775));
    }

    void many_entries_get_only_the_bits_that_were_touched()
    {
        dir_->file("a", 0, 0644);
        dir_->file("b", 0, 0600);
        dir_->folder("d", 0755);
        open({"a", "b", "d"});
        x_click_toggle("pr_gwrite");
        x_done();
        QCOMPARE(dir_->mode("a"), mode_t(0664));
        QCOMPARE(dir_->mode("b"), mode_t(0620));
        QCOMPARE(dir_->mode("d"), mode_t(0775));
    }

    void a_toggle_touched_twice_takes_the_bit_from_all()
    {
        dir_->file("a", 0, 0644);
        dir_->file("b", 0, 0755);
        open({"a", "b"});
        x_click_toggle("pr_uexec");
        x_click_toggle("pr_uexec");
        x_done();
        QCOMPARE(dir_->mode("a"), mode_t(0644));
        QCOMPARE(dir_->mode("b"), mode_t(0655));
    }

    void what_others_changed_meanwhile_is_kept()
    {
        dir_->file("a", 0, 0644);
        dir_->file("b", 0, 0644);
        open({"a", "b"});
        QCOMPARE(chmod(dir_->at("b").c_str(), 0700), 0);
        x_click_toggle("pr_gwrite");
        x_done();
        QCOMPARE(dir_->mode("b"), mode_t(0720));
    }

    void cancel_and_escape_change_nothing()
    {
        dir_->file("a", 0, 0644);
        open({"a"});
        x_edit("pr_name", "b");
        x_click_toggle("pr_oexec");
        dialog_click(DIALOG, "pr_cancel");
        QVERIFY(!dialog_up(DIALOG));
        fm_inspect(nullptr);
        x_edit("pr_name", "b");
        QTest::keyClick(dialog_up(DIALOG), Qt::Key_Escape);
        QVERIFY(!dialog_up(DIALOG));
        QVERIFY(dir_->has("a") && !dir_->has("b"));
        QCOMPARE(dir_->mode("a"), mode_t(0644));
        QVERIFY(!wblock_is_blocked(gBase));
    }

    void a_new_name_is_given_and_the_cursor_goes_there()
    {
        dir_->file("a");
        dir_->file("z");
        open({"a"});
        x_edit("pr_name", "new & <b>");
        QTest::keyClick(x_field("pr_name"), Qt::Key_Return);
        QVERIFY(dir_->has("new & <b>") && !dir_->has("a"));
        QCOMPARE(entry_name(gDir.current), std::string("new & <b>"));
    }

    void renaming_to_what_exists_is_refused_and_replaces_nothing()
    {
        dir_->file("a", 1);
        dir_->file("b", 2);
        open({"a"});
        x_edit("pr_name", "b");
        QCOMPARE(x_done_says(), QStringLiteral("Error: File name 'b' already exists"));
        QVERIFY(dir_->has("a"));
        QCOMPARE(std::filesystem::file_size(dir_->at("b")), uintmax_t(2));
        QVERIFY(!dialog_up(DIALOG));
    }

    void a_name_that_appears_after_the_dialog_opened_is_not_replaced()
    {
        dir_->file("a", 1);
        open({"a"});
        dir_->file("b", 2);
        x_edit("pr_name", "b");
        QCOMPARE(x_done_says(), QStringLiteral("Error: File name 'b' already exists"));
        QCOMPARE(std::filesystem::file_size(dir_->at("b")), uintmax_t(2));
    }

    void names_that_cannot_be_given_are_reported_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QString>("message");
        QTest::newRow("empty") << QByteArray() << QStringLiteral("nothing");
        QTest::newRow("dot") << QByteArray(".")
                             << QStringLiteral("Error: File name '.' already exists");
        QTest::newRow("slash") << QByteArray("d/x")
                               << QStringLiteral("Error: Unable to rename 'd/x'.");
        QTest::newRow("slash at the end")
            << QByteArray("d/") << QStringLiteral("Error: Unable to rename 'd/'.");
    }
    void names_that_cannot_be_given_are_reported()
    {
        QFETCH(QByteArray, name);
        QFETCH(QString, message);
        dir_->file("a");
        dir_->folder("d");
        open({"a"});
        x_edit("pr_name", name.constData());
        QCOMPARE(x_done_says(), message);
        QVERIFY(dir_->has("a"));
        QVERIFY(!dir_->has("d/x"));
        for (QTimer *timer : qApp->findChildren<QTimer *>())
            delete timer; // the answer that nobody asked for
    }

    void names_of_255_bytes_are_given_and_of_256_refused()
    {
        dir_->file("a");
        open({"a"});
        x_edit("pr_name", std::string(255, 'n').c_str());
        x_done();
        QVERIFY(dir_->has(std::string(255, 'n')));
        fm_inspect(nullptr);
        select_names({std::string(255, 'n').c_str()});
        fm_inspect(nullptr);
        x_edit("pr_name", std::string(256, 'n').c_str());
        QVERIFY(x_done_says().startsWith(QStringLiteral("Error: Unable to rename 'nnn")));
        QVERIFY(dir_->has(std::string(255, 'n')));
    }

    void a_name_that_is_no_text_survives_a_change_of_the_mode()
    {
        dir_->file("caf\xE9\n", 0, 0644);
        open({"caf\xE9\n"});
        QCOMPARE(x_field("pr_name")->text(), QStringLiteral("caf\\xE9\u240A"));
        x_click_toggle("pr_oexec");
        x_done();
        QVERIFY(dir_->has("caf\xE9\n"));
        QCOMPARE(dir_->mode("caf\xE9\n"), mode_t(0645));
    }

    void an_entry_that_vanished_is_reported_and_the_others_are_done()
    {
        dir_->file("a", 0, 0644);
        dir_->file("b", 0, 0644);
        open({"a", "b"});
        unlink(dir_->at("a").c_str());
        x_click_toggle("pr_oexec");
        QCOMPARE(x_done_says(), QStringLiteral("Error: Unable to change permissions of 'a'"));
        QCOMPARE(dir_->mode("b"), mode_t(0645));
        QVERIFY(!dialog_up(DIALOG));
    }

    void a_vanished_entry_cannot_be_renamed()
    {
        dir_->file("a");
        open({"a"});
        unlink(dir_->at("a").c_str());
        x_edit("pr_name", "b");
        QCOMPARE(x_done_says(), QStringLiteral("Error: Unable to rename 'b'."));
    }

    void the_list_may_do_what_it_likes_meanwhile()
    {
        dir_->file("m", 0, 0644);
        open({"m"});
        dir_->file("a");
        fl_refresh();
        fl_unselect_all(nullptr);
        x_click_toggle("pr_oexec");
        x_done();
        QCOMPARE(dir_->mode("m"), mode_t(0645));
        QCOMPARE(dir_->mode("a"), mode_t(0644));
    }

    // Owners, as the privileged user.

    void a_number_that_is_no_name_is_taken_as_an_id()
    {
        if (geteuid() != 0)
            return; // nobody else may give files away
        dir_->file("a");
        open({"a"});
        x_edit("pr_owner", "1234");
        x_edit("pr_group", "daemon");
        x_done();
        struct stat info = {};
        QCOMPARE(stat(dir_->at("a").c_str(), &info), 0);
        QCOMPARE(info.st_uid, uid_t(1234));
        QCOMPARE(info.st_gid, getgrnam("daemon")->gr_gid);
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
        if (geteuid() != 0)
            return; // the fields are only to be read for others
        QFETCH(QByteArray, field);
        QFETCH(QByteArray, text);
        QFETCH(QString, message);
        dir_->file("a", 0, 0644);
        dir_->file("b", 0, 0644);
        open({"a", "b"});
        x_edit(field.constData(), text.constData());
        x_click_toggle("pr_oexec");
        QCOMPARE(x_done_says(), message);
        QCOMPARE(dir_->mode("a"), mode_t(0644));
        QCOMPARE(dir_->mode("b"), mode_t(0644));
    }

    void a_cut_user_name_that_was_not_edited_is_not_applied()
    {
        PropChange change;
        change.owner = "averyverylongna";
        std::string name = "a", message;
        QCOMPARE(prop_apply(AT_FDCWD, name, change, message), -1);
        QCOMPARE(message, std::string("Invalid owner_id 'averyverylongna'"));
        dir_->file("a", 0, 0644);
        open({"a"});
        x_field("pr_owner")->setText(QStringLiteral("averyverylongna")); // as shown, not typed
        x_click_toggle("pr_oexec");
        x_done();
        QCOMPARE(dir_->mode("a"), mode_t(0645));
    }

    // As an ordinary user.

    void an_ordinary_user_reads_owner_and_group_only()
    {
        dir_->file("a");
        const Ordinary ordinary;
        open({"a"});
        QVERIFY(x_field("pr_owner")->isReadOnly());
        QVERIFY(x_field("pr_group")->isReadOnly());
        QTest::keyClicks(x_field("pr_owner"), QStringLiteral("x"));
        QVERIFY(!x_field("pr_owner")->isModified());
    }

    void an_ordinary_user_changes_what_is_its_own()
    {
        QCOMPARE(chmod(dir_->path().c_str(), 0777), 0);
        const Ordinary ordinary;
        dir_->file("mine", 0, 0644);
        open({"mine"});
        x_click_toggle("pr_oread");
        x_done();
        QCOMPARE(dir_->mode("mine"), mode_t(0640));
    }

    void an_ordinary_user_is_told_what_may_not_be_changed()
    {
        if (getuid() != 0)
            return; // needs files of two users
        QCOMPARE(chmod(dir_->path().c_str(), 0777), 0);
        dir_->file("foreign", 0, 0644);
        const Ordinary ordinary;
        open({"foreign"});
        x_click_toggle("pr_oexec");
        QCOMPARE(x_done_says(), QStringLiteral("Error: Unable to change permissions of 'foreign'"));
        QCOMPARE(dir_->mode("foreign"), mode_t(0644));
    }

    void in_a_read_only_directory_nothing_is_renamed()
    {
        dir_->file("a");
        QCOMPARE(chmod(dir_->path().c_str(), 0555), 0);
        {
            const Ordinary ordinary;
            open({"a"});
            x_edit("pr_name", "b");
            QCOMPARE(x_done_says(), QStringLiteral("Error: Unable to rename 'b'."));
        }
        QVERIFY(dir_->has("a"));
        QCOMPARE(chmod(dir_->path().c_str(), 0755), 0);
    }

    void ownership_that_may_not_be_changed_is_reported()
    {
        QCOMPARE(chmod(dir_->path().c_str(), 0777), 0);
        const Ordinary ordinary;
        dir_->file("mine");
        const int directory = ::open(dir_->path().c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
        PropChange change;
        change.owner = "root";
        std::string name = "mine", message;
        QCOMPARE(prop_apply(directory, name, change, message), -1);
        QCOMPARE(message, std::string("Unable to change ownership of 'mine'"));
        close(directory);
    }

    void many_failures_are_counted_after_the_first_few()
    {
        for (int i = 0; i < 20; i++)
            dir_->file(x_numbered('f', 10 + i), 0, 0644);
        fl_setpath(dir_->path().c_str());
        fl_select_all();
        fm_inspect(nullptr);
        for (int i = 0; i < 20; i++)
            unlink(dir_->at(x_numbered('f', 10 + i)).c_str());
        QStringList texts;
        QTimer answer;
        connect(&answer, &QTimer::timeout, this, [&] {
            for (QMessageBox *box : boxes_standing()) {
                texts.append(boxes_text(box));
                box->close();
            }
        });
        answer.start(2);
        x_click_toggle("pr_oexec");
        x_done();
        QVERIFY(texts.contains(QStringLiteral("Unable to change permissions of 'f10'")));
        QVERIFY(texts.contains(QStringLiteral("15 more items could not be changed")));
        QVERIFY(texts.size() < 10);
    }

    void twenty_thousand_entries_open_and_are_changed()
    {
        constexpr int COUNT = 20000;
        for (int i = 0; i < COUNT; i++)
            dir_->file(x_numbered('f', i), 0, 0644);
        fl_setpath(dir_->path().c_str());
        fl_select_all();
        fm_inspect(nullptr);
        QCOMPARE(x_label("pr_comment")->text(), QStringLiteral("(%1 files)").arg(COUNT));
        x_click_toggle("pr_oexec");
        x_done();
        for (int i = 0; i < COUNT; i++)
            QCOMPARE(dir_->mode(x_numbered('f', i)), mode_t(0645));
    }
};

QTEST_MAIN(PropTest)
#include "prop_qtest.moc"

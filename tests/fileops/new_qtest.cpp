// The dialog for a new file or folder.
#include "commands/fm_dlg.h"
#include "fileops/long_name.h"
#include "fileops/new_dlg.h"
#include "support/dialogs.h"
#include "support/ordinary.h"

#include <QLineEdit>

using namespace tav;
using namespace tav::test;

class NewTest : public QObject {
    Q_OBJECT

    std::unique_ptr<OwnDir> dir_;
    std::unique_ptr<MainWindow> main_;

    static void type(const QString &name)
    {
        auto *field = dialog_find<QLineEdit>("new_dlg", "new_name");
        field->clear();
        field->insert(name); // keyClicks types ASCII only
        QTest::keyClick(field, Qt::Key_Return);
    }
    // What a box says to a name.
    static QString said_to(const QString &name)
    {
        auto seen = boxes_answer_next(QStringLiteral("&Continue"));
        type(name);
        return seen->came ? seen->title + QStringLiteral(": ") + seen->text : QString();
    }

private Q_SLOTS:
    void init()
    {
        dir_ = std::make_unique<OwnDir>();
        main_ = std::make_unique<MainWindow>();
        gNewHooks = {fl_refresh, fm_show_new};
        dir_->file("old");
        dir_->folder("folder");
        fl_setpath(dir_->path().c_str());
    }
    void cleanup()
    {
        main_.reset();
        dir_.reset();
        QVERIFY(boxes_standing().isEmpty());
    }

    void the_dialog_says_what_it_makes()
    {
        fm_new_file(nullptr);
        QCOMPARE(dialog_up("new_dlg")->windowTitle(), QStringLiteral("Create New File"));
        QCOMPARE(dialog_find<QLabel>("new_dlg", "new_label")->text(), QStringLiteral("File Name"));
        QCOMPARE(gNew_op, 1);
        QVERIFY(wblock_is_blocked(gBase));
        QTest::keyClick(dialog_up("new_dlg"), Qt::Key_Escape);
        QVERIFY(!dialog_up("new_dlg"));
        QVERIFY(!wblock_is_blocked(gBase));
        fm_new_folder(nullptr);
        QCOMPARE(dialog_up("new_dlg")->windowTitle(), QStringLiteral("Create New Folder"));
        QCOMPARE(dialog_find<QLabel>("new_dlg", "new_label")->text(),
                 QStringLiteral("Folder Name"));
        QCOMPARE(gNew_op, -2);
        dialog_click("new_dlg", "new_cancel");
        QVERIFY(!dialog_up("new_dlg"));
    }

    void the_name_has_the_keyboard()
    {
        fm_new_file(nullptr);
        QTRY_VERIFY(dialog_find<QLineEdit>("new_dlg", "new_name")->hasFocus());
    }

    void a_new_file_is_selected_and_current()
    {
        const mode_t mask = umask(022);
        fm_new_file(nullptr);
        type(QStringLiteral("fresh [1]*"));
        umask(mask);
        QVERIFY(!dialog_up("new_dlg"));
        QVERIFY(dir_->has("fresh [1]*"));
        QCOMPARE(dir_->mode("fresh [1]*"), mode_t(0644));
        QCOMPARE(selected_names(), std::string("fresh [1]*"));
        QCOMPARE(entry_name(gDir.current), std::string("fresh [1]*"));
        QTRY_VERIFY(main_->list->hasFocus());
    }

    void a_new_folder_is_made_with_all_but_what_the_mask_takes()
    {
        const mode_t mask = umask(0);
        fm_new_folder(nullptr);
        type(QStringLiteral("d\u00E4"));
        umask(mask);
        QVERIFY(std::filesystem::is_directory(dir_->at("d\xC3\xA4")));
        QCOMPARE(dir_->mode("d\xC3\xA4"), mode_t(0755));
        QCOMPARE(selected_names(), std::string("d\xC3\xA4"));
    }

    void an_empty_name_does_nothing()
    {
        fm_new_file(nullptr);
        type(QString());
        QVERIFY(dialog_up("new_dlg"));
        QVERIFY(boxes_standing().isEmpty());
    }

    void a_name_of_254_bytes_is_tried_and_one_of_255_refused()
    {
        fm_new_file(nullptr);
        QCOMPARE(said_to(QString(255, QLatin1Char('a'))), QStringLiteral("Error: Name too long\n"));
        QCOMPARE(said_to(QString(256, QLatin1Char('a'))), QStringLiteral("Error: Name too long\n"));
        QCOMPARE(said_to(QString(127, QChar(0xE4)) + QLatin1Char('a')),
                 QStringLiteral("Error: Name too long\n"));
        QVERIFY(dialog_up("new_dlg"));
        type(QString(254, QLatin1Char('a')));
        QVERIFY(dir_->has(std::string(254, 'a')));
        fm_new_folder(nullptr);
        QCOMPARE(said_to(QString(255, QLatin1Char('b'))), QStringLiteral("Error: Name too long\n"));
        type(QString(254, QLatin1Char('b')));
        QVERIFY(dir_->has(std::string(254, 'b')));
    }

    void what_exists_is_refused_whatever_the_kind()
    {
        for (auto *make : {fm_new_file, fm_new_folder}) {
            for (const char *name : {"old", "folder", ".", "..", "/"}) {
                make(nullptr);
                QCOMPARE(said_to(QString::fromLatin1(name)),
                         QStringLiteral("Error: File or directory '%1' already exists")
                             .arg(QString::fromLatin1(name)));
                dialog_click("new_dlg", "new_cancel");
            }
        }
    }

    void a_link_to_nothing_exists_and_its_target_is_not_made()
    {
        QCOMPARE(symlink("target", dir_->at("link").c_str()), 0);
        fm_new_file(nullptr);
        QCOMPARE(said_to(QStringLiteral("link")),
                 QStringLiteral("Error: File or directory 'link' already exists"));
        QVERIFY(!dir_->has("target"));
        dialog_click("new_dlg", "new_cancel");
    }

    void a_file_that_cannot_be_made_is_reported_and_the_list_refreshed()
    {
        fm_new_file(nullptr);
        dir_->file("meanwhile");
        QCOMPARE(said_to(QStringLiteral("no/such")),
                 QStringLiteral("Error: Unable to create file 'no/such'\n"));
        QVERIFY(fl_find("meanwhile", FL_EXACT) >= 0);
        QVERIFY(dialog_up("new_dlg"));
        QCOMPARE(dialog_find<QLineEdit>("new_dlg", "new_name")->text(), QStringLiteral("no/such"));
        dialog_click("new_dlg", "new_cancel");
    }

    void a_folder_that_cannot_be_made_is_reported_and_nothing_else_happens()
    {
        fm_new_folder(nullptr);
        dir_->file("meanwhile");
        QCOMPARE(said_to(QStringLiteral("no/such")),
                 QStringLiteral("Error: Unable to create directory 'no/such'"));
        QVERIFY(fl_find("meanwhile", FL_EXACT) < 0);
        dialog_click("new_dlg", "new_cancel");
    }

    void in_a_read_only_directory_nothing_is_made()
    {
        QCOMPARE(chmod(dir_->path().c_str(), 0555), 0);
        {
            const Ordinary ordinary;
            fm_new_file(nullptr);
            QCOMPARE(said_to(QStringLiteral("x")),
                     QStringLiteral("Error: Unable to create file 'x'\n"));
            dialog_click("new_dlg", "new_cancel");
            fm_new_folder(nullptr);
            QCOMPARE(said_to(QStringLiteral("x")),
                     QStringLiteral("Error: Unable to create directory 'x'"));
            dialog_click("new_dlg", "new_cancel");
        }
        QCOMPARE(chmod(dir_->path().c_str(), 0755), 0);
        QVERIFY(!dir_->has("x"));
    }

    void a_path_below_is_made_and_the_cursor_goes_to_what_leads_there()
    {
        fm_new_file(nullptr);
        type(QStringLiteral("folder/inside"));
        QVERIFY(dir_->has("folder/inside"));
        QCOMPARE(selected_names(), std::string("folder"));
        fm_new_folder(nullptr);
        type(QStringLiteral("slash/"));
        QCOMPARE(selected_names(), std::string("slash"));
        fm_new_file(nullptr);
        QCOMPARE(said_to(QStringLiteral("file/")),
                 QStringLiteral("Error: Unable to create file 'file/'\n"));
        dialog_click("new_dlg", "new_cancel");
    }

    void a_line_end_is_a_character_of_a_name()
    {
        fm_new_file(nullptr);
        type(QStringLiteral("a\nb"));
        QVERIFY(dir_->has("a\nb"));
        fm_new_file(nullptr);
        QCOMPARE(said_to(QStringLiteral("a\nb")),
                 QStringLiteral("Error: File or directory 'a\u240Ab' already exists"));
        dialog_click("new_dlg", "new_cancel");
    }

    void after_a_message_the_dialog_has_the_keyboard_again()
    {
        fm_new_file(nullptr);
        QDialog *dialog = dialog_up("new_dlg");
        QTRY_COMPARE(QApplication::activeWindow(), dialog);
        QCOMPARE(said_to(QStringLiteral("old")),
                 QStringLiteral("Error: File or directory 'old' already exists"));
        QTRY_COMPARE(QApplication::activeWindow(), dialog);
        QVERIFY(dialog_find<QLineEdit>("new_dlg", "new_name")->hasFocus());
    }

    void the_directory_that_was_shown_is_used_wherever_the_program_stands()
    {
        fm_new_file(nullptr);
        QCOMPARE(chdir("/"), 0);
        type(QStringLiteral("here"));
        QVERIFY(dir_->has("here"));
    }

    void a_directory_that_is_gone_is_reported()
    {
        fm_new_file(nullptr);
        std::filesystem::remove_all(dir_->path());
        QList<QString> texts;
        QTimer answer;
        connect(&answer, &QTimer::timeout, this, [&] {
            for (QMessageBox *box : boxes_standing()) {
                texts.append(boxes_text(box));
                box->close();
            }
        });
        answer.start(5);
        type(QStringLiteral("x"));
        QVERIFY(texts.contains(QStringLiteral("Unable to create file 'x'\n")));
        dialog_click("new_dlg", "new_cancel");
    }

    void markup_and_marks_in_a_name_are_plain_text()
    {
        dir_->file("<b>&x");
        fm_new_file(nullptr);
        QCOMPARE(said_to(QStringLiteral("<b>&x")),
                 QStringLiteral("Error: File or directory '<b>&x' already exists"));
        dialog_click("new_dlg", "new_cancel");
    }

    void a_proposed_name_that_is_no_text_keeps_its_bytes()
    {
        const std::string proposed = "\xE9\n" + std::string(40, '\xE8') + ".c";
        FopPlace place;
        bool accepted = false;
        long_name_open("/from/" + proposed, "/to/" + proposed, place,
                       [&accepted](bool given) { accepted = given; });
        auto *field = dialog_find<QLineEdit>("long_filename_dlg", "long_filename_newname");
        QVERIFY(field->text().startsWith(QStringLiteral("\\xE9\u240A\\xE8")));
        QTest::keyClick(field, Qt::Key_End);
        QTest::keyClick(field, Qt::Key_Backspace);
        QTest::keyClicks(field, QStringLiteral("h"));
        QTest::keyClick(field, Qt::Key_Return);
        QVERIFY(accepted);
        QCOMPARE(place.name, "\xE9\n" + std::string(40, '\xE8') + ".h");
        close(place.dir_fd);
    }

    void a_proposed_name_is_cut_to_47_bytes_and_an_empty_one_declines()
    {
        const std::string name = std::string(46, 'n') + "\xC3\xA4" + std::string(100, 'x');
        FopPlace place;
        bool answered = false, accepted = false;
        long_name_open("/from/" + name, "/to/" + name, place, [&](bool given) {
            answered = true;
            accepted = given;
        });
        auto *field = dialog_find<QLineEdit>("long_filename_dlg", "long_filename_newname");
        QCOMPARE(field->text(), QString(46, QLatin1Char('n'))); // no character is halved
        QTRY_VERIFY(field->hasFocus());
        field->clear();
        QTest::keyClicks(field, QStringLiteral("a/b"));
        QCOMPARE(field->text(), QStringLiteral("ab")); // a bare name
        field->clear();
        QTest::keyClick(field, Qt::Key_Return);
        QVERIFY(answered && !accepted);
        QCOMPARE(place.dir_fd, -1);
    }

    void opening_twice_shows_one_dialog()
    {
        fm_new_file(nullptr);
        QDialog *first = dialog_up("new_dlg");
        fm_new_folder(nullptr);
        QCOMPARE(dialog_up("new_dlg"), first);
        type(QStringLiteral("file"));
        QVERIFY(std::filesystem::is_regular_file(dir_->at("file")));
    }
};

QTEST_MAIN(NewTest)
#include "new_qtest.moc"

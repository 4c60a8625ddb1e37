// "Copy To" and "Move To": what they hold, confirming, the prompt; and the list's context menu that
// carries them.
#include "commands/dtm_fixture.h"
#include "commands/lcm.h"

#include <QDialog>
#include <QPushButton>

namespace tav {

using namespace tav::test;

class MgenTest : public QObject {
    Q_OBJECT

    std::unique_ptr<DtmWindow> m;

    static QStringList context_menu()
    {
        QMenu menu;
        lcm_setup(&menu);
        return dtm_texts(menu);
    }

private Q_SLOTS:
    void init() { m = std::make_unique<DtmWindow>(); }
    void cleanup()
    {
        m.reset();
        QTRY_COMPARE(worker_count(), 0);
    }

    void nothing_selected_adds_no_destination_items_and_answers_three()
    {
        m->select({});
        QMenu menu;
        QCOMPARE(mgen_work_insert(&menu, nullptr), 3);
        QVERIFY(menu.actions().isEmpty());
    }

    void destination_items_open_on_other_and_the_hotlist()
    {
        m->dir.file("a");
        m->select({"a"});
        QMenu menu;
        QCOMPARE(mgen_work_insert(&menu, nullptr), 3);
        QCOMPARE(dtm_texts(menu),
                 (QStringList{QStringLiteral("&Copy To"), QStringLiteral("&Move To")}));
        QMenu *cascade = menu.actions().first()->menu();
        QCOMPARE(dtm_texts(*cascade), QStringList{QStringLiteral("&Other...")});
        for (int twice = 0; twice < 2; twice++) {
            Q_EMIT cascade->aboutToShow();
            QCOMPARE(
                dtm_texts(*cascade),
                (QStringList{QStringLiteral("&Other..."), QStringLiteral("-"), QStringLiteral("/"),
                             QString::fromStdString(m->dir.path()) + QLatin1Char('/')}));
        }
    }

    void cascade_hides_dot_names_as_the_settings_say_data()
    {
        QTest::addColumn<unsigned>("flags");
        QTest::addColumn<int>("count");
        QTest::newRow("shown") << 0u << 2;
        QTest::newRow("hidden") << CONFIG_HIDE_DOT << 1;
    }
    void cascade_hides_dot_names_as_the_settings_say()
    {
        QFETCH(unsigned, flags);
        QFETCH(int, count);
        gConfig->flags = flags;
        m->dir.dir(".dot");
        m->dir.dir("plain");
        tree_set_paths({m->dir.path()});
        QMenu menu;
        mgen_add_tree(&menu, dtm_chosen);
        auto *item = dynamic_cast<DirMenuItem *>(menu.actions().last());
        QVERIFY(item);
        QCOMPARE(item->flags, flags);
        QTRY_COMPARE(item->state(), DtmState::cascade);
        menu.popup(QPoint(0, 0));
        menu.setActiveAction(item);
        QTRY_COMPARE(item->items.size(), count);
        QCOMPARE(item->items[0]->flags, flags);
    }

    void empty_hotlist_leaves_other_alone()
    {
        tree_set_paths({});
        QMenu menu;
        mgen_add_tree(&menu, dtm_chosen);
        QVERIFY(menu.actions().isEmpty());
    }

    void three_files_to_tmp_are_confirmed_as_three_files()
    {
        for (const char *name : {"a", "b", "c"})
            m->dir.file(name);
        m->select({"a", "b", "c"});
        x_copy_to_dest("/tmp");
        QVERIFY(box());
        QCOMPARE(box()->windowTitle(), QStringLiteral("copy"));
        QCOMPARE(boxes_text(box()), QStringLiteral("Do you want to copy 3 files to\n'/tmp'\n"));
        QCOMPARE(box()->defaultButton()->text(), QStringLiteral("&Yes"));
        fl_unselect_all(nullptr); // the answer is about the files of the question
        answer("&Yes");
        QCOMPARE(gJobs, std::vector{"copy " + m->dir.path() + ": a b c -> /tmp"});
    }

    void one_file_is_confirmed_by_its_name_and_no_stops()
    {
        m->dir.file("a");
        m->select({"a"});
        x_move_to_dest("/tmp");
        QCOMPARE(box()->windowTitle(), QStringLiteral("move"));
        QCOMPARE(boxes_text(box()), QStringLiteral("Do you want to move a to\n'/tmp'\n"));
        answer("&No");
        x_move_to_dest("/tmp");
        QTest::keyClick(box(), Qt::Key_Escape);
        QTRY_VERIFY(!box());
        QVERIFY(gJobs.empty());
    }

    void other_asks_for_a_directory_and_remembers_it()
    {
        m->dir.file("a");
        m->select({"a"});
        auto prompt = [this] {
            return m->window.window.findChild<QDialog *>(QStringLiteral("input_dest"));
        };
        x_copy_to_dest(nullptr);
        QVERIFY(prompt());
        QCOMPARE(prompt()->windowTitle(), QStringLiteral("Copy to"));
        auto *field = prompt()->findChild<QLineEdit *>(QStringLiteral("dest_text"));
        QCOMPARE(field->maxLength(), 1024);
        field->setText(QStringLiteral("there"));
        QTest::keyClick(field, Qt::Key_Return);
        QTRY_COMPARE(gJobs,
                     std::vector{"copy " + m->dir.path() + ": a -> " + m->dir.path() + "/there/"});
        QTRY_VERIFY(!prompt());
        x_move_to_dest(nullptr);
        QCOMPARE(prompt()->windowTitle(), QStringLiteral("Move to"));
        field = prompt()->findChild<QLineEdit *>(QStringLiteral("dest_text"));
        QCOMPARE(field->text(), QStringLiteral("there"));
        QTest::mouseClick(prompt()->findChild<QPushButton *>(QStringLiteral("dest_cancel")),
                          Qt::LeftButton);
        QTRY_VERIFY(!prompt());
        x_move_to_dest(nullptr);
        prompt()
            ->findChild<QLineEdit *>(QStringLiteral("dest_text"))
            ->setText(QStringLiteral("  "));
        QTest::mouseClick(prompt()->findChild<QPushButton *>(QStringLiteral("dest_ok")),
                          Qt::LeftButton);
        QTRY_VERIFY(!prompt());
        QCOMPARE(gJobs.size(), 1u);
    }

    void typed_destination_becomes_absolute_and_ends_in_a_slash_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("destination");
        QTest::newRow("relative") << QStringLiteral("a b") << QStringLiteral("%1/a b/");
        QTest::newRow("relative with its slash") << QStringLiteral("a/") << QStringLiteral("%1/a/");
        QTest::newRow("absolute") << QStringLiteral("/tmp") << QStringLiteral("/tmp/");
        QTest::newRow("the root") << QStringLiteral("/") << QStringLiteral("/");
    }
    void typed_destination_becomes_absolute_and_ends_in_a_slash()
    {
        QFETCH(QString, typed);
        QFETCH(QString, destination);
        std::string got;
        m->select({});
        input_dest("Copy to", [&got](const std::string &path) { got = path; });
        auto *prompt = m->window.window.findChild<QDialog *>(QStringLiteral("input_dest"));
        const auto text = [prompt](const char *name) {
            return prompt->findChild<QWidget *>(QLatin1String(name))->property("text").toString();
        };
        QCOMPARE(text("dest_label"), QStringLiteral("Destination directory:"));
        QCOMPARE(text("dest_ok"), QStringLiteral("&OK"));
        QCOMPARE(text("dest_cancel"), QStringLiteral("&Cancel"));
        prompt->findChild<QLineEdit *>(QStringLiteral("dest_text"))->setText(typed);
        QTest::mouseClick(prompt->findChild<QPushButton *>(QStringLiteral("dest_ok")),
                          Qt::LeftButton);
        QTRY_VERIFY(!got.empty());
        QCOMPARE(QString::fromStdString(got),
                 destination.contains(QLatin1Char('%'))
                     ? destination.arg(QString::fromStdString(m->dir.path()))
                     : destination);
    }

    void confirmation_offers_no_before_yes_and_yes_by_default()
    {
        confirm("copy", QStringLiteral("x"), "/tmp", [] {});
        QVERIFY(box());
        QCOMPARE(box()->windowTitle(), QStringLiteral("copy"));
        QPushButton *no = qobject_cast<QPushButton *>(boxes_button(box(), QStringLiteral("&No")));
        QPushButton *yes = qobject_cast<QPushButton *>(boxes_button(box(), QStringLiteral("&Yes")));
        QVERIFY(no && yes && box()->buttons().size() == 2);
        QVERIFY(no->mapToGlobal(QPoint()).x() < yes->mapToGlobal(QPoint()).x());
        QCOMPARE(box()->defaultButton(), yes);
        answer("&No");
    }

    void context_menu_without_selection_and_clipboard_adds_nothing()
    {
        m->select({});
        QVERIFY(context_menu().isEmpty());
    }

    void context_menu_of_a_file_without_association()
    {
        m->dir.file("thing");
        m->select({"thing"});
        QCOMPARE(context_menu().join(QLatin1Char('|')),
                 QStringLiteral("Open &With|-|&Print|-|Cu&t|C&opy|&Delete|&Rename|-|&Copy To|&Move "
                                "To|-|&Inspect|-"));
    }

    void context_menu_in_full_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<bool>("paste");
        QTest::addColumn<QString>("texts");
        const QString end = QStringLiteral("&Delete|&Rename|-|&Copy To|&Move To|-|&Inspect|-");
        const QString file = QStringLiteral("&Open|&View|&Edit|Open &With|-|&Print|-|Cu&t|C&opy|");
        const QString folder = QStringLiteral("&Open|Open In Win&dow|-|Cu&t|C&opy|");
        const QString paste = QStringLiteral("&Paste|");
        QTest::newRow("file") << QByteArray("a.x") << false << file + end;
        QTest::newRow("file and files to paste") << QByteArray("a.x") << true << file + paste + end;
        QTest::newRow("directory") << QByteArray("d.x") << false << folder + end;
        QTest::newRow("directory and files to paste")
            << QByteArray("d.x") << true << folder + paste + end;
    }
    void context_menu_in_full()
    {
        QFETCH(QByteArray, name);
        QFETCH(bool, paste);
        QFETCH(QString, texts);
        apat.clear();
        _add_pat("*.x", "open", "view", "edit");
        m->dir.file("a.x");
        m->dir.dir("d.x"); // no association counts for a directory
        m->select({name.constData()});
        if (paste)
            clip_put(std::make_shared<const FileListRecord>(transf_make("/x", {"y"})), false);
        QCOMPARE(context_menu().join(QLatin1Char('|')), texts);
        as_set_defaults();
    }

    void context_menu_offers_what_every_selected_file_has_a_command_for_data()
    {
        QTest::addColumn<QString>("names");
        QTest::addColumn<QString>("texts");
        QTest::newRow("open alone") << QStringLiteral("o") << QStringLiteral("&Open|Open &With");
        QTest::newRow("view alone") << QStringLiteral("v") << QStringLiteral("&View|Open &With");
        QTest::newRow("edit alone") << QStringLiteral("e") << QStringLiteral("&Edit|Open &With");
        QTest::newRow("blank commands") << QStringLiteral("b") << QStringLiteral("Open &With");
        QTest::newRow("the second counts too")
            << QStringLiteral("all v") << QStringLiteral("&View|Open &With");
        QTest::newRow("nothing in common")
            << QStringLiteral("e o v") << QStringLiteral("Open &With");
    }
    void context_menu_offers_what_every_selected_file_has_a_command_for()
    {
        QFETCH(QString, names);
        QFETCH(QString, texts);
        apat.clear();
        _add_pat("all", "open", "view", "edit");
        _add_pat("o", "open", "", "");
        _add_pat("v", "", "view", "");
        _add_pat("e", "", "", "edit");
        _add_pat("b", " ", "\t", " ");
        _add_pat("*", "open", "view", "edit"); // the first that matches counts
        m->select({});
        const QStringList each = names.split(QLatin1Char(' '));
        for (const QString &name : each)
            m->dir.file(name.toStdString());
        fl_refresh();
        for (const QString &name : each)
            fl_select(name.toUtf8(), FL_EXACT);
        QCOMPARE(context_menu().join(QLatin1Char('|')).section(QStringLiteral("|-"), 0, 0), texts);
        as_set_defaults();
    }

    void context_menu_shows_what_the_association_can_do()
    {
        apat.clear();
        _add_pat("*.x", "open", "", "edit");
        m->dir.file("a.x");
        m->dir.file("b");
        m->select({"a.x"});
        QCOMPARE(context_menu().mid(0, 3).join(QLatin1Char('|')),
                 QStringLiteral("&Open|&Edit|Open &With"));
        fl_select("b", FL_EXACT);
        QCOMPARE(context_menu().first(), QStringLiteral("Open &With"));
        QVERIFY(!context_menu().contains(QStringLiteral("&Rename")));
        as_set_defaults();
    }

    void context_menu_of_a_directory_and_a_file_cannot_print()
    {
        m->dir.file("a");
        m->dir.dir("d");
        m->select({"a", "d"});
        const QStringList texts = context_menu();
        QCOMPARE(texts.mid(0, 4).join(QLatin1Char('|')),
                 QStringLiteral("&Open|Open In Win&dow|-|Cu&t"));
        QVERIFY(!texts.contains(QStringLiteral("&Print")));
    }

    void context_menu_offers_paste_whatever_is_selected()
    {
        m->select({});
        clip_put(std::make_shared<const FileListRecord>(transf_make("/x", {"y"})), false);
        QCOMPARE(context_menu(), (QStringList{QStringLiteral("&Paste"), QStringLiteral("-")}));
    }
};

} // namespace tav

QTEST_MAIN(tav::MgenTest)
#include "mgen_qtest.moc"

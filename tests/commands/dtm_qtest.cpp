// Destination menus: cascades of directories, their scans, choosing, confirming, the prompt; and
// the list's context menu that carries them.
#include "commands/as.h"
#include "commands/clip.h"
#include "commands/lcm.h"
#include "commands/mgen.h"
#include "jobs.h"
#include "platform/pool.h"
#include "platform/worker.h"
#include "support/boxes.h"
#include "views/fl_fixture.h"
#include "views/tree_hotlist.h"

#include <QClipboard>
#include <QDialog>
#include <QGuiApplication>
#include <QMimeData>
#include <QPushButton>
#include <QScreen>
#include <QStyleOptionMenuItem>

namespace tav {

using test::gJobs;

namespace {

std::vector<std::string> sChosen;
int x_chosen(const char *path)
{
    sChosen.emplace_back(path ? path : "other");
    return 0;
}

int x_refuse(pthread_t *, const pthread_attr_t *, void *(*)(void *), void *) noexcept
{
    return EAGAIN;
}

std::atomic<bool> sHang; // directories do not answer
DIR *x_slow_opendir(const char *path)
{
    test_wait([] { return !sHang; }, 60'000);
    return opendir(path);
}

DIR *x_refusing_opendir(const char *)
{
    errno = EACCES;
    return nullptr;
}

// A menu whose items' looks can be read.
struct OpenMenu : DtmMenu {
    OpenMenu() : DtmMenu(nullptr) {}
    [[nodiscard]] QStyleOptionMenuItem look(const QAction *item) const
    {
        QStyleOptionMenuItem option;
        initStyleOption(&option, item);
        return option;
    }
};

QStringList x_texts(const QMenu &menu)
{
    QStringList texts;
    for (const QAction *action : menu.actions())
        texts << (action->isSeparator() ? QStringLiteral("-") : action->text());
    return texts;
}

QStringList x_list(const char *texts) { return QString::fromUtf8(texts).split(QLatin1Char(' ')); }

} // namespace

class DtmTest : public QObject {
    Q_OBJECT

    std::unique_ptr<FlWindow> m_window;
    std::unique_ptr<TestDir> m_dir;
    uint32_t m_flags = 0;

    void select(std::initializer_list<const char *> names)
    {
        fl_setpath(m_dir->path().c_str());
        fl_refresh();
        for (const char *name : names)
            fl_select(name, FL_EXACT);
    }
    // A menu with one item for the test's directory, whose submenu is open.
    DirMenuItem *open(QMenu &menu)
    {
        DirMenuItem *item = dtm_add_item(&menu, m_dir->path(), "label", 0, x_chosen);
        menu.popup(QPoint(0, 0));
        menu.setActiveAction(item);
        return item;
    }
    QMessageBox *box()
    {
        QList<QMessageBox *> boxes = test::boxes_standing();
        return boxes.isEmpty() ? nullptr : boxes.first();
    }
    void answer(const char *label)
    {
        QAbstractButton *button = test::boxes_button(box(), QLatin1String(label));
        QVERIFY(button);
        QTest::mouseClick(button, Qt::LeftButton);
        QTRY_VERIFY(!box());
    }
    QStringList context_menu()
    {
        QMenu menu;
        lcm_setup(&menu);
        return x_texts(menu);
    }

private Q_SLOTS:
    void initTestCase()
    {
        ui_gate_open();
        clip_setup();
        m_flags = gConfig->flags;
        as_set_defaults();
    }
    void init()
    {
        gConfig->flags = 0;
        m_dir = std::make_unique<TestDir>();
        m_window = std::make_unique<FlWindow>();
        test::jobs_catch();
        sChosen.clear();
        tree_set_paths({"/", m_dir->path()});
        QGuiApplication::clipboard()->setMimeData(new QMimeData);
    }
    void cleanup()
    {
        sHang = false;
        gDtmOpendir = opendir;
        gWorkerCreate = pthread_create;
        m_window.reset();
        m_dir.reset();
        gConfig->flags = m_flags;
        QTRY_COMPARE(worker_count(), 0);
    }

    void label_ends_in_one_slash()
    {
        QMenu menu;
        QCOMPARE(dtm_add_item(&menu, "/a", "a&b", 0, x_chosen)->text(), QStringLiteral("a&&b/"));
        QCOMPARE(dtm_add_item(&menu, "/", "/", 0, x_chosen)->text(), QStringLiteral("/"));
    }

    void submenu_says_scanning_and_is_then_the_directories_in_order()
    {
        for (const char *name : {"10", "2", "1a", "x&y"})
            m_dir->dir(name);
        m_dir->dir("2/below");
        QMenu menu;
        DirMenuItem *item = dtm_add_item(&menu, m_dir->path(), "label", 0, x_chosen);
        item->arm();
        QCOMPARE(x_texts(*item->submenu), QStringList{QStringLiteral("Scanning...")});
        QVERIFY(!item->submenu->actions().first()->isEnabled());
        menu.popup(QPoint(0, 0));
        menu.setActiveAction(item);
        QTRY_COMPARE(item->items.size(), 4);
        QTRY_VERIFY(item->submenu->isVisible());
        QCOMPARE(x_texts(*item->submenu), x_list("1a/ 2/ 10/ x&&y/"));
        QTRY_COMPARE(item->items[1]->state(), DtmState::cascade);
        QTRY_COMPARE(item->items[3]->state(), DtmState::plain);
    }

    void directory_without_subdirectories_becomes_a_plain_item()
    {
        m_dir->file("file");
        QMenu menu;
        DirMenuItem *item = open(menu);
        QTRY_COMPARE(item->state(), DtmState::plain);
        QVERIFY(!item->menu());
        item->trigger();
        QTRY_COMPARE(sChosen, std::vector{m_dir->path()});
    }

    void directory_that_vanishes_while_its_menu_opens_becomes_plain()
    {
        QMenu menu;
        DirMenuItem *item = dtm_add_item(&menu, m_dir->at("gone"), "gone", 0, x_chosen);
        menu.popup(QPoint(0, 0));
        menu.setActiveAction(item);
        QTRY_COMPARE(item->state(), DtmState::plain);
    }

    void directory_that_refuses_becomes_plain()
    {
        m_dir->dir("sub");
        gDtmOpendir = x_refusing_opendir;
        QMenu menu;
        DirMenuItem *item = open(menu);
        QTRY_COMPARE(item->state(), DtmState::plain);
        QVERIFY(!item->menu() && menu.isVisible() && !box());
    }

    void subdirectory_that_vanishes_while_the_menu_is_open_becomes_plain()
    {
        m_dir->dir("sub/below");
        QMenu menu;
        DirMenuItem *item = open(menu);
        QTRY_VERIFY(item->items.size() == 1 && item->items[0]->state() == DtmState::cascade);
        m_dir->remove("sub/below");
        m_dir->remove("sub");
        item->submenu->setActiveAction(item->items[0]);
        QTRY_COMPARE(item->items[0]->state(), DtmState::plain);
        QVERIFY(!item->items[0]->menu() && item->submenu->isVisible());
    }

    void item_is_grey_without_an_arrow_until_it_is_examined()
    {
        m_dir->dir("sub");
        OpenMenu menu;
        sHang = true;
        gDtmOpendir = x_slow_opendir;
        DirMenuItem *with = dtm_add_item(&menu, m_dir->path(), "x", DTM_EXAMINE, x_chosen);
        DirMenuItem *leaf = dtm_add_item(&menu, m_dir->at("sub"), "x", DTM_EXAMINE, x_chosen);
        const QColor grey(0x90, 0x90, 0x90);
        for (const DirMenuItem *item : {with, leaf}) {
            QCOMPARE(menu.look(item).palette.color(QPalette::Text), grey);
            QCOMPARE(menu.look(item).menuItemType, QStyleOptionMenuItem::Normal);
        }
        sHang = false;
        QTRY_COMPARE(with->state(), DtmState::cascade);
        QTRY_COMPARE(leaf->state(), DtmState::plain);
        for (const DirMenuItem *item : {with, leaf})
            QVERIFY(menu.look(item).palette.color(QPalette::Text) != grey);
        QCOMPARE(menu.look(with).menuItemType, QStyleOptionMenuItem::SubMenu);
        QCOMPARE(menu.look(leaf).menuItemType, QStyleOptionMenuItem::Normal);
    }

    void a_long_name_is_cut_in_its_middle_and_leaves_room_on_the_screen()
    {
        OpenMenu menu;
        const std::string name = "first " + std::string(240, 'm') + " last";
        const DirMenuItem *item = dtm_add_item(&menu, "/" + name, name, 0, x_chosen);
        const QString shown = menu.look(item).text;
        QVERIFY(shown.startsWith(QStringLiteral("first ")));
        QVERIFY(shown.endsWith(QStringLiteral(" last/")));
        QVERIFY(shown.contains(QChar(0x2026)));
        QVERIFY(menu.sizeHint().width() < menu.screen()->geometry().width() / 2);
        QCOMPARE(item->text(), QString::fromStdString(name + '/')); // what is read out
    }

    void examined_at_creation_only_with_the_option()
    {
        m_dir->dir("sub");
        QMenu menu;
        DirMenuItem *with = dtm_add_item(&menu, m_dir->path(), "x", DTM_EXAMINE, x_chosen);
        DirMenuItem *leaf = dtm_add_item(&menu, m_dir->at("sub"), "x", DTM_EXAMINE, x_chosen);
        DirMenuItem *without = dtm_add_item(&menu, m_dir->path(), "x", 0, x_chosen);
        QTRY_COMPARE(with->state(), DtmState::cascade);
        QTRY_COMPARE(leaf->state(), DtmState::plain);
        QVERIFY(with->menu() && !leaf->menu());
        QCOMPARE(without->state(), DtmState::unknown);
        QCOMPARE(with->flags, 0u);
    }

    void ctrl_enter_chooses_an_item_that_has_a_submenu()
    {
        m_dir->dir("sub");
        QMenu menu;
        open(menu);
        QTest::keyClick(&menu, Qt::Key_Return, Qt::ControlModifier);
        QTRY_COMPARE(sChosen, std::vector{m_dir->path()});
        QVERIFY(!menu.isVisible());
    }

    void double_click_chooses_an_item_that_has_a_submenu()
    {
        m_dir->dir("sub");
        QMenu menu;
        DirMenuItem *item = open(menu);
        QTRY_COMPARE(item->items.size(), 1);
        const QPoint place = menu.actionGeometry(item).center();
        QTest::mouseClick(&menu, Qt::LeftButton, {}, place);
        QVERIFY(sChosen.empty());
        QTest::mouseDClick(&menu, Qt::LeftButton, {}, place);
        QTRY_COMPARE(sChosen.size(), 1u);
    }

    void letter_moves_to_the_next_item_that_begins_with_it()
    {
        for (const char *name : {"apple", "bean", "berry"})
            m_dir->dir(name);
        QMenu menu;
        DirMenuItem *item = open(menu);
        QTRY_COMPARE(item->items.size(), 3);
        QTRY_VERIFY(item->submenu->isVisible());
        QTest::keyClick(item->submenu, Qt::Key_B);
        QCOMPARE(item->submenu->activeAction(), item->items[1]);
        QTest::keyClick(item->submenu, Qt::Key_B);
        QCOMPARE(item->submenu->activeAction(), item->items[2]);
        QTest::keyClick(item->submenu, Qt::Key_B);
        QCOMPARE(item->submenu->activeAction(), item->items[1]);
    }

    void letter_opens_no_submenu_so_that_the_next_letter_is_for_the_same_menu()
    {
        for (const char *name : {"bean/sub", "berry/sub"})
            m_dir->dir(name);
        QMenu menu;
        DirMenuItem *item = open(menu);
        QTRY_VERIFY(item->items.size() == 2 && item->items[1]->state() == DtmState::cascade);
        for (int i : {0, 1, 0}) { // the second time round they have submenus already
            QTest::keyClick(item->submenu, Qt::Key_B);
            QCOMPARE(item->submenu->activeAction(), item->items[i]);
            QCoreApplication::processEvents();
            QCOMPARE(QApplication::activePopupWidget(), item->submenu.data());
        }
        QTest::keyClick(item->submenu, Qt::Key_Right);
        QTRY_COMPARE(item->items[0]->items.size(), 1);
    }

    void opened_and_closed_a_thousand_times_data()
    {
        QTest::addColumn<bool>("anew");
        QTest::addColumn<bool>("hangs");
        QTest::newRow("the same menu") << false << false;
        QTest::newRow("a new one each time") << true << false;
        QTest::newRow("the same menu of a directory that hangs") << false << true;
    }
    // Each menu is on the screen with its submenu; what happens meanwhile falls into all stages of
    // the scan.
    void opened_and_closed_a_thousand_times()
    {
        QFETCH(bool, anew);
        QFETCH(bool, hangs);
        for (int i = 0; i < 30; i++)
            m_dir->dir(std::to_string(i) + "/sub");
        sHang = hangs;
        gDtmOpendir = x_slow_opendir;
        std::unique_ptr<QMenu> menu;
        DirMenuItem *item = nullptr;
        for (int i = 0; i < 1000; i++) {
            if (anew || !menu) {
                menu = std::make_unique<QMenu>();
                item = dtm_add_item(menu.get(), m_dir->path(), "x", 0, x_chosen);
            }
            menu->popup(QPoint(0, 0));
            menu->setActiveAction(item);
            QVERIFY(item->submenu->isVisible());
            for (int turns = 0; turns < i % 4; turns++)
                QCoreApplication::processEvents();
            menu->close();
            QVERIFY(!menu->isVisible() && !item->submenu->isVisible());
        }
        QVERIFY(worker_count() <= (hangs ? 1 : 1000));
        sHang = false;
        menu->popup(QPoint(0, 0));
        menu->setActiveAction(item);
        QTRY_COMPARE(item->items.size(), 30);
        QTRY_VERIFY(item->submenu->isVisible());
        QTRY_COMPARE(worker_count(), 0);
        QVERIFY(sChosen.empty());
        gDtmOpendir = opendir;
    }

    void a_thread_that_cannot_start_is_told_and_tried_again_at_the_next_opening()
    {
        m_dir->dir("sub");
        gWorkerCreate = x_refuse;
        QMenu menu;
        DirMenuItem *item = open(menu);
        QTRY_VERIFY(box());
        QCOMPARE(box()->windowTitle(), QStringLiteral("Directory Scanning"));
        QCOMPARE(test::boxes_text(box()), QStringLiteral("Unable to start scanning procedure!"));
        gWorkerCreate = pthread_create;
        box()->close();
        menu.close();
        menu.popup(QPoint(0, 0));
        menu.setActiveAction(item);
        QTRY_COMPARE(item->items.size(), 1);
    }

    void an_item_that_nobody_can_examine_shows_an_arrow()
    {
        gWorkerCreate = x_refuse;
        QMenu menu;
        DirMenuItem *item = dtm_add_item(&menu, m_dir->path(), "x", DTM_EXAMINE, x_chosen);
        gWorkerCreate = pthread_create;
        QCOMPARE(item->state(), DtmState::cascade);
    }

    void a_directory_that_hangs_holds_nothing_up()
    {
        m_dir->dir("sub");
        sHang = true;
        gDtmOpendir = x_slow_opendir;
        {
            QMenu menu;
            DirMenuItem *item = open(menu);
            QTRY_VERIFY(dtm_is_scanning(*item));
            QTRY_VERIFY(item->submenu->isVisible());
            QCOMPARE(x_texts(*item->submenu), QStringList{QStringLiteral("Scanning...")});
            menu.close();
        } // destroyed in the middle of the scan: nobody waits for the worker
        QCOMPARE(worker_count(), 1);
        sHang = false;
        QTRY_COMPARE(worker_count(), 0);
        gDtmOpendir = opendir;
    }

    void many_entries_are_examined_by_few_threads()
    {
        sHang = true;
        gDtmOpendir = x_slow_opendir;
        QMenu menu;
        QList<DirMenuItem *> items;
        for (int i = 0; i < 30; i++) {
            const std::string path = m_dir->dir("d" + std::to_string(i));
            items.append(dtm_add_item(&menu, path, path, DTM_EXAMINE, x_chosen));
        }
        QVERIFY(worker_count() <= POOL_WORKERS + 1); // with the one that watches them
        sHang = false;
        for (const DirMenuItem *item : items)
            QTRY_COMPARE(item->state(), DtmState::plain);
        QTRY_COMPARE(worker_count(), 0);
        gDtmOpendir = opendir;
    }

    void nothing_selected_adds_no_destination_items_and_answers_three()
    {
        select({});
        QMenu menu;
        QCOMPARE(mgen_work_insert(&menu, nullptr), 3);
        QVERIFY(menu.actions().isEmpty());
    }

    void destination_items_open_on_other_and_the_hotlist()
    {
        m_dir->file("a");
        select({"a"});
        QMenu menu;
        QCOMPARE(mgen_work_insert(&menu, nullptr), 3);
        QCOMPARE(x_texts(menu),
                 (QStringList{QStringLiteral("&Copy To"), QStringLiteral("&Move To")}));
        QMenu *cascade = menu.actions().first()->menu();
        QCOMPARE(x_texts(*cascade), QStringList{QStringLiteral("&Other...")});
        for (int twice = 0; twice < 2; twice++) {
            Q_EMIT cascade->aboutToShow();
            QCOMPARE(
                x_texts(*cascade),
                (QStringList{QStringLiteral("&Other..."), QStringLiteral("-"), QStringLiteral("/"),
                             QString::fromStdString(m_dir->path()) + QLatin1Char('/')}));
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
        m_dir->dir(".dot");
        m_dir->dir("plain");
        tree_set_paths({m_dir->path()});
        QMenu menu;
        mgen_add_tree(&menu, x_chosen);
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
        mgen_add_tree(&menu, x_chosen);
        QVERIFY(menu.actions().isEmpty());
    }

    void three_files_to_tmp_are_confirmed_as_three_files()
    {
        for (const char *name : {"a", "b", "c"})
            m_dir->file(name);
        select({"a", "b", "c"});
        x_copy_to_dest("/tmp");
        QVERIFY(box());
        QCOMPARE(box()->windowTitle(), QStringLiteral("copy"));
        QCOMPARE(test::boxes_text(box()),
                 QStringLiteral("Do you want to copy 3 files to\n'/tmp'\n"));
        QCOMPARE(box()->defaultButton()->text(), QStringLiteral("&Yes"));
        fl_unselect_all(nullptr); // the answer is about the files of the question
        answer("&Yes");
        QCOMPARE(gJobs, std::vector{"copy " + m_dir->path() + ": a b c -> /tmp"});
    }

    void one_file_is_confirmed_by_its_name_and_no_stops()
    {
        m_dir->file("a");
        select({"a"});
        x_move_to_dest("/tmp");
        QCOMPARE(box()->windowTitle(), QStringLiteral("move"));
        QCOMPARE(test::boxes_text(box()), QStringLiteral("Do you want to move a to\n'/tmp'\n"));
        answer("&No");
        x_move_to_dest("/tmp");
        QTest::keyClick(box(), Qt::Key_Escape);
        QTRY_VERIFY(!box());
        QVERIFY(gJobs.empty());
    }

    void other_asks_for_a_directory_and_remembers_it()
    {
        m_dir->file("a");
        select({"a"});
        auto prompt = [this] {
            return m_window->window.findChild<QDialog *>(QStringLiteral("input_dest"));
        };
        x_copy_to_dest(nullptr);
        QVERIFY(prompt());
        QCOMPARE(prompt()->windowTitle(), QStringLiteral("Copy to"));
        auto *field = prompt()->findChild<QLineEdit *>(QStringLiteral("dest_text"));
        QCOMPARE(field->maxLength(), 1024);
        field->setText(QStringLiteral("there"));
        QTest::keyClick(field, Qt::Key_Return);
        QTRY_COMPARE(gJobs,
                     std::vector{"copy " + m_dir->path() + ": a -> " + m_dir->path() + "/there/"});
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
        select({});
        input_dest("Copy to", [&got](const std::string &path) { got = path; });
        auto *prompt = m_window->window.findChild<QDialog *>(QStringLiteral("input_dest"));
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
                     ? destination.arg(QString::fromStdString(m_dir->path()))
                     : destination);
    }

    void confirmation_offers_no_before_yes_and_yes_by_default()
    {
        confirm("copy", QStringLiteral("x"), "/tmp", [] {});
        QVERIFY(box());
        QCOMPARE(box()->windowTitle(), QStringLiteral("copy"));
        QPushButton *no =
            qobject_cast<QPushButton *>(test::boxes_button(box(), QStringLiteral("&No")));
        QPushButton *yes =
            qobject_cast<QPushButton *>(test::boxes_button(box(), QStringLiteral("&Yes")));
        QVERIFY(no && yes && box()->buttons().size() == 2);
        QVERIFY(no->mapToGlobal(QPoint()).x() < yes->mapToGlobal(QPoint()).x());
        QCOMPARE(box()->defaultButton(), yes);
        answer("&No");
    }

    void context_menu_without_selection_and_clipboard_adds_nothing()
    {
        select({});
        QVERIFY(context_menu().isEmpty());
    }

    void context_menu_of_a_file_without_association()
    {
        m_dir->file("thing");
        select({"thing"});
        QCOMPARE(context_menu().join(QLatin1Char('|')),
                 QStringLiteral("Open &With|-|&Print|-|Cu&t|C&opy|&Delete|&Rename|-|&Copy To|&Move "
                                "To|-|&Inspect|-"));
    }

    void context_menu_shows_what_the_association_can_do()
    {
        apat.clear();
        _add_pat("*.x", "open", "", "edit");
        m_dir->file("a.x");
        m_dir->file("b");
        select({"a.x"});
        QCOMPARE(context_menu().mid(0, 3).join(QLatin1Char('|')),
                 QStringLiteral("&Open|&Edit|Open &With"));
        fl_select("b", FL_EXACT);
        QCOMPARE(context_menu().first(), QStringLiteral("Open &With"));
        QVERIFY(!context_menu().contains(QStringLiteral("&Rename")));
        as_set_defaults();
    }

    void context_menu_of_a_directory_and_a_file_cannot_print()
    {
        m_dir->file("a");
        m_dir->dir("d");
        select({"a", "d"});
        const QStringList texts = context_menu();
        QCOMPARE(texts.mid(0, 4).join(QLatin1Char('|')),
                 QStringLiteral("&Open|Open In Win&dow|-|Cu&t"));
        QVERIFY(!texts.contains(QStringLiteral("&Print")));
    }

    void context_menu_offers_paste_whatever_is_selected()
    {
        select({});
        clip_put(std::make_shared<const FileListRecord>(transf_make("/x", {"y"})), false);
        QCOMPARE(context_menu(), (QStringList{QStringLiteral("&Paste"), QStringLiteral("-")}));
    }
};

} // namespace tav

QTEST_MAIN(tav::DtmTest)
#include "dtm_qtest.moc"

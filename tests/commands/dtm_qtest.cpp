// Destination menus: cascades of directories, their scans, their looks, choosing.
#include "commands/dtm_fixture.h"
#include "platform/pool.h"
#include "support/ordinary.h"

#include <QScreen>
#include <QStyleOptionMenuItem>

namespace tav {

using namespace tav::test;

namespace {

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

QStringList x_list(const char *texts) { return QString::fromUtf8(texts).split(QLatin1Char(' ')); }

} // namespace

class DtmTest : public QObject {
    Q_OBJECT

    std::unique_ptr<DtmWindow> m;

    // A menu with one item for the test's directory, whose submenu is open.
    DirMenuItem *open(QMenu &menu)
    {
        DirMenuItem *item = dtm_add_item(&menu, m->dir.path(), "label", 0, dtm_chosen);
        menu.popup(QPoint(0, 0));
        menu.setActiveAction(item);
        return item;
    }

private Q_SLOTS:
    void init() { m = std::make_unique<DtmWindow>(); }
    void cleanup()
    {
        sHang = false;
        gDtmOpendir = opendir;
        gWorkerCreate = pthread_create;
        m.reset();
        QTRY_COMPARE(worker_count(), 0);
    }

    void label_ends_in_one_slash()
    {
        QMenu menu;
        QCOMPARE(dtm_add_item(&menu, "/a", "a&b", 0, dtm_chosen)->text(), QStringLiteral("a&&b/"));
        QCOMPARE(dtm_add_item(&menu, "/", "/", 0, dtm_chosen)->text(), QStringLiteral("/"));
    }

    void submenu_says_scanning_and_is_then_the_directories_in_order()
    {
        for (const char *name : {"10", "2", "1a", "x&y"})
            m->dir.dir(name);
        m->dir.dir("2/below");
        QMenu menu;
        DirMenuItem *item = dtm_add_item(&menu, m->dir.path(), "label", 0, dtm_chosen);
        item->arm();
        QCOMPARE(dtm_texts(*item->submenu), QStringList{QStringLiteral("Scanning...")});
        QVERIFY(!item->submenu->actions().first()->isEnabled());
        menu.popup(QPoint(0, 0));
        menu.setActiveAction(item);
        QTRY_COMPARE(item->items.size(), 4);
        QTRY_VERIFY(item->submenu->isVisible());
        QCOMPARE(dtm_texts(*item->submenu), x_list("1a/ 2/ 10/ x&&y/"));
        QTRY_COMPARE(item->items[1]->state(), DtmState::cascade);
        QTRY_COMPARE(item->items[3]->state(), DtmState::plain);
    }

    void directory_without_subdirectories_becomes_a_plain_item()
    {
        m->dir.file("file");
        QMenu menu;
        DirMenuItem *item = open(menu);
        QTRY_COMPARE(item->state(), DtmState::plain);
        QVERIFY(!item->menu());
        item->trigger();
        QTRY_COMPARE(gChosen, std::vector{m->dir.path()});
    }

    void directory_that_vanishes_while_its_menu_opens_becomes_plain()
    {
        QMenu menu;
        DirMenuItem *item = dtm_add_item(&menu, m->dir.at("gone"), "gone", 0, dtm_chosen);
        menu.popup(QPoint(0, 0));
        menu.setActiveAction(item);
        QTRY_COMPARE(item->state(), DtmState::plain);
    }

    void directory_that_refuses_becomes_plain()
    {
        m->dir.dir("sub");
        gDtmOpendir = x_refusing_opendir;
        QMenu menu;
        DirMenuItem *item = open(menu);
        QTRY_COMPARE(item->state(), DtmState::plain);
        QVERIFY(!item->menu() && menu.isVisible() && !box());
    }

    void directory_in_which_nothing_can_be_reached_becomes_plain()
    {
        m->dir.dir("closed/sub");
        chmod(m->dir.path().c_str(), 0755);
        chmod(m->dir.at("closed").c_str(), 0444); // its names can be read, no more
        const Ordinary nobody;
        QMenu menu;
        DirMenuItem *item = dtm_add_item(&menu, m->dir.at("closed"), "x", 0, dtm_chosen);
        DirMenuItem *with = dtm_add_item(&menu, m->dir.at("closed"), "x", DTM_EXAMINE, dtm_chosen);
        menu.popup(QPoint(0, 0));
        menu.setActiveAction(item);
        QTRY_COMPARE(item->state(), DtmState::plain);
        QTRY_COMPARE(with->state(), DtmState::plain);
    }

    void subdirectory_that_vanishes_while_the_menu_is_open_becomes_plain()
    {
        m->dir.dir("sub/below");
        QMenu menu;
        DirMenuItem *item = open(menu);
        QTRY_VERIFY(item->items.size() == 1 && item->items[0]->state() == DtmState::cascade);
        m->dir.remove("sub/below");
        m->dir.remove("sub");
        item->submenu->setActiveAction(item->items[0]);
        QTRY_COMPARE(item->items[0]->state(), DtmState::plain);
        QVERIFY(!item->items[0]->menu() && item->submenu->isVisible());
    }

    void item_is_grey_without_an_arrow_until_it_is_examined()
    {
        m->dir.dir("sub");
        OpenMenu menu;
        sHang = true;
        gDtmOpendir = x_slow_opendir;
        DirMenuItem *with = dtm_add_item(&menu, m->dir.path(), "x", DTM_EXAMINE, dtm_chosen);
        DirMenuItem *leaf = dtm_add_item(&menu, m->dir.at("sub"), "x", DTM_EXAMINE, dtm_chosen);
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
        const DirMenuItem *item = dtm_add_item(&menu, "/" + name, name, 0, dtm_chosen);
        const QString shown = menu.look(item).text;
        QVERIFY(shown.startsWith(QStringLiteral("first ")));
        QVERIFY(shown.endsWith(QStringLiteral(" last/")));
        QVERIFY(shown.contains(QChar(0x2026)));
        QVERIFY(menu.sizeHint().width() < menu.screen()->geometry().width() / 2);
        QCOMPARE(item->text(), QString::fromStdString(name + '/')); // what is read out
    }

    void examined_at_creation_only_with_the_option()
    {
        m->dir.dir("sub");
        QMenu menu;
        DirMenuItem *with = dtm_add_item(&menu, m->dir.path(), "x", DTM_EXAMINE, dtm_chosen);
        DirMenuItem *leaf = dtm_add_item(&menu, m->dir.at("sub"), "x", DTM_EXAMINE, dtm_chosen);
        DirMenuItem *without = dtm_add_item(&menu, m->dir.path(), "x", 0, dtm_chosen);
        QTRY_COMPARE(with->state(), DtmState::cascade);
        QTRY_COMPARE(leaf->state(), DtmState::plain);
        QVERIFY(with->menu() && !leaf->menu());
        QCOMPARE(without->state(), DtmState::unknown);
        QCOMPARE(with->flags, 0u);
    }

    void ctrl_enter_chooses_an_item_that_has_a_submenu()
    {
        m->dir.dir("sub");
        QMenu menu;
        open(menu);
        QTest::keyClick(&menu, Qt::Key_Return, Qt::ControlModifier);
        QTRY_COMPARE(gChosen, std::vector{m->dir.path()});
        QVERIFY(!menu.isVisible());
    }

    void enter_opens_the_submenu_of_an_item_that_has_one_and_chooses_nothing()
    {
        m->dir.dir("sub");
        QMenu menu;
        DirMenuItem *item = dtm_add_item(&menu, m->dir.path(), "x", DTM_EXAMINE, dtm_chosen);
        QTRY_COMPARE(item->state(), DtmState::cascade);
        menu.popup(QPoint(0, 0));
        dtm_menu_highlight(menu, *item);
        QTest::keyClick(&menu, Qt::Key_Return);
        QTRY_COMPARE(item->items.size(), 1);
        QTRY_VERIFY(item->submenu->isVisible());
        QVERIFY(gChosen.empty());
    }

    void double_click_chooses_an_item_that_has_a_submenu()
    {
        m->dir.dir("sub");
        QMenu menu;
        DirMenuItem *item = open(menu);
        QTRY_COMPARE(item->items.size(), 1);
        const QPoint place = menu.actionGeometry(item).center();
        QTest::mouseClick(&menu, Qt::LeftButton, {}, place);
        QVERIFY(gChosen.empty());
        QTest::mouseDClick(&menu, Qt::LeftButton, {}, place);
        QTRY_COMPARE(gChosen.size(), 1u);
    }

    void letter_moves_to_the_next_item_that_begins_with_it()
    {
        for (const char *name : {"apple", "bean", "berry"})
            m->dir.dir(name);
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
            m->dir.dir(name);
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
            m->dir.dir(std::to_string(i) + "/sub");
        sHang = hangs;
        gDtmOpendir = x_slow_opendir;
        std::unique_ptr<QMenu> menu;
        DirMenuItem *item = nullptr;
        for (int i = 0; i < 1000; i++) {
            if (anew || !menu) {
                menu = std::make_unique<QMenu>();
                item = dtm_add_item(menu.get(), m->dir.path(), "x", 0, dtm_chosen);
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
        QVERIFY(gChosen.empty());
        gDtmOpendir = opendir;
    }

    void a_thread_that_cannot_start_is_told_and_tried_again_at_the_next_opening()
    {
        m->dir.dir("sub");
        gWorkerCreate = x_refuse;
        QMenu menu;
        DirMenuItem *item = open(menu);
        QTRY_VERIFY(box());
        QCOMPARE(box()->windowTitle(), QStringLiteral("Directory Scanning"));
        QCOMPARE(boxes_text(box()), QStringLiteral("Unable to start scanning procedure!"));
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
        DirMenuItem *item = dtm_add_item(&menu, m->dir.path(), "x", DTM_EXAMINE, dtm_chosen);
        gWorkerCreate = pthread_create;
        QCOMPARE(item->state(), DtmState::cascade);
    }

    void a_directory_that_hangs_holds_nothing_up()
    {
        m->dir.dir("sub");
        sHang = true;
        gDtmOpendir = x_slow_opendir;
        {
            QMenu menu;
            DirMenuItem *item = open(menu);
            QTRY_VERIFY(dtm_is_scanning(*item));
            QTRY_VERIFY(item->submenu->isVisible());
            QCOMPARE(dtm_texts(*item->submenu), QStringList{QStringLiteral("Scanning...")});
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
            const std::string path = m->dir.dir("d" + std::to_string(i));
            items.append(dtm_add_item(&menu, path, path, DTM_EXAMINE, dtm_chosen));
        }
        QVERIFY(worker_count() <= POOL_WORKERS + 1); // with the one that watches them
        sHang = false;
        for (const DirMenuItem *item : items)
            QTRY_COMPARE(item->state(), DtmState::plain);
        QTRY_COMPARE(worker_count(), 0);
        gDtmOpendir = opendir;
    }
};

} // namespace tav

QTEST_MAIN(tav::DtmTest)
#include "dtm_qtest.moc"

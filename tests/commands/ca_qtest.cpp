// Cascades of directory menus: what they hold, their limits, building ahead, hiding and going on.
#include "app/config.h"
#include "commands/ca.h"
#include "platform/w.h"
#include "testdir.h"
#include "views/tree_hotlist.h"

#include <QDropEvent>
#include <QMenu>
#include <QMimeData>
#include <QTest>
#include <functional>
#include <memory>

namespace tav {

namespace {

std::vector<std::string> sChosen;
int x_chosen(QWidget *, const char *path)
{
    sChosen.emplace_back(path);
    return 0;
}

QStringList x_texts(const QMenu *menu)
{
    QStringList texts;
    for (const QAction *action : menu ? menu->actions() : QList<QAction *>())
        texts << (action->isSeparator() ? QStringLiteral("-") : action->text());
    return texts;
}

QStringList x_sorted(QStringList texts)
{
    texts.sort();
    return texts;
}

} // namespace

class CaTest : public QObject {
    Q_OBJECT

    std::unique_ptr<TestDir> m_dir;
    std::unique_ptr<QMenu> m_menu;
    uint32_t m_options = 0;

    void dirs(const std::string &below, int count)
    {
        for (int i = 0; i < count; i++)
            m_dir->dir(below + "/" + std::to_string(1000 + i));
    }
    // The menu of one directory, as it is on the screen.
    QAction *show(const std::string &path)
    {
        tree_set_paths({path});
        ca_populate_menu(m_menu.get(), x_chosen);
        m_menu->popup(QPoint(0, 0));
        return m_menu->actions().last();
    }
    QAction *arm(QAction *item)
    {
        qobject_cast<QMenu *>(item->parent())->setActiveAction(item);
        return item;
    }
    // One turn of the main loop after the other, so that nothing is missed in between.
    static bool turns_until(const std::function<bool()> &condition)
    {
        for (int turns = 0; !condition() && turns < 1000; turns++)
            QCoreApplication::processEvents();
        return condition();
    }
    void release(QAction *item)
    {
        auto *menu = qobject_cast<QMenu *>(item->parent());
        QTest::mouseRelease(menu, Qt::LeftButton, {}, menu->actionGeometry(item).center());
    }

private Q_SLOTS:
    void init()
    {
        m_options = gOptions;
        gOptions &= ~(OPTION_MENU_BUILD | OPTION_MENU_DOT);
        m_dir = std::make_unique<TestDir>();
        m_menu = std::make_unique<QMenu>();
        sChosen.clear();
    }
    void cleanup()
    {
        m_menu.reset();
        m_dir.reset();
        gOptions = m_options;
        QTRY_COMPARE(ca_constructions() + ca_backgrounds(), 0);
    }

    void menu_is_the_hotlist_behind_a_line_and_filled_once()
    {
        tree_set_paths({"/", "/x&y"});
        for (int twice = 0; twice < 2; twice++) {
            QCOMPARE(ca_populate_menu(m_menu.get(), x_chosen), 0);
            QCOMPARE(x_texts(m_menu.get()).join(QLatin1Char(' ')), QStringLiteral("- / /x&&y"));
        }
    }

    void empty_hotlist_adds_nothing()
    {
        tree_set_paths({});
        ca_populate_menu(m_menu.get(), x_chosen);
        QVERIFY(m_menu->actions().isEmpty());
    }

    void at_most_a_hundred_directories_of_the_hotlist()
    {
        std::vector<std::string> paths;
        for (int i = 0; i < 101; i++)
            paths.push_back("/" + std::to_string(i));
        tree_set_paths(paths);
        ca_populate_menu(m_menu.get(), x_chosen);
        QCOMPARE(m_menu->actions().size(), 1 + 100);
        QCOMPARE(m_menu->actions().last()->text(), QStringLiteral("/99"));
    }

    void armed_item_gets_its_subdirectories_without_links_and_dot_names()
    {
        for (const char *name : {"one", "two&", ".dot", "one/below"})
            m_dir->dir(name);
        m_dir->file("file");
        m_dir->link("link", m_dir->at("one"));
        QAction *item = arm(show(m_dir->path()));
        QTRY_COMPARE(ca_constructions(), 0);
        QCOMPARE(x_sorted(x_texts(item->menu())).join(QLatin1Char(' ')),
                 QStringLiteral("one two&&"));
    }

    void dot_names_count_with_their_option()
    {
        m_dir->dir(".dot");
        m_dir->dir("plain");
        gOptions |= OPTION_MENU_DOT;
        QAction *item = arm(show(m_dir->path()));
        QTRY_COMPARE(x_sorted(x_texts(item->menu())).join(QLatin1Char(' ')),
                     QStringLiteral(".dot plain"));
    }

    void without_the_option_nothing_is_built_ahead()
    {
        m_dir->dir("sub");
        const QAction *item = show(m_dir->path());
        QCOMPARE(ca_backgrounds(), 0);
        QCoreApplication::processEvents();
        QVERIFY(!item->menu());
    }

    void with_the_option_every_item_is_built_ahead()
    {
        gOptions |= OPTION_MENU_BUILD;
        std::vector<std::string> paths;
        for (int i = 0; i < 12; i++) {
            m_dir->dir(std::to_string(i) + "/sub");
            paths.push_back(m_dir->at(std::to_string(i)));
        }
        tree_set_paths(paths);
        ca_populate_menu(m_menu.get(), x_chosen);
        QCOMPARE(ca_backgrounds(), 1);
        QTRY_COMPARE(ca_backgrounds(), 0);
        for (const QAction *item : m_menu->actions().mid(1))
            QCOMPARE(x_texts(item->menu()), QStringList(QStringLiteral("sub")));
    }

    void directory_that_cannot_be_opened_is_dimmed()
    {
        QAction *item = arm(show(m_dir->at("gone")));
        QVERIFY(!item->isEnabled());
        QVERIFY(!item->menu());
    }

    void directory_without_subdirectories_stays_a_plain_item()
    {
        m_dir->file("file");
        QAction *item = arm(show(m_dir->path()));
        QTRY_COMPARE(ca_constructions(), 0);
        QVERIFY(item->isEnabled() && !item->menu());
    }

    void a_hundred_subdirectories_need_no_notice()
    {
        dirs("d", 100);
        QAction *item = arm(show(m_dir->at("d")));
        QTRY_COMPARE(ca_constructions(), 0);
        QCOMPARE(item->menu()->actions().size(), 100);
    }

    void behind_the_hundred_and_first_subdirectory_stands_a_notice()
    {
        dirs("d", 150);
        QAction *item = arm(show(m_dir->at("d")));
        QTRY_COMPARE(ca_constructions(), 0);
        QCOMPARE(item->menu()->actions().size(), 101 + 1);
        const QAction *notice = item->menu()->actions().last();
        QCOMPARE(notice->text(), QStringLiteral("too many items"));
        QVERIFY(!notice->isEnabled());
        QVERIFY(notice->font().italic());
    }

    void releasing_the_button_chooses_an_item_with_its_full_path()
    {
        m_dir->dir("sub/below");
        QAction *item = arm(show(m_dir->path() + "/"));
        QTRY_VERIFY(item->menu());
        QAction *sub = item->menu()->actions().first();
        item->menu()->popup(QPoint(0, 0));
        release(sub); // not armed yet
        QVERIFY(sChosen.empty());
        arm(sub);
        release(sub);
        QTRY_COMPARE(sChosen, std::vector{m_dir->at("sub")});
        QVERIFY(!m_menu->isVisible());
    }

    void releasing_over_an_item_with_a_submenu_chooses_it_too()
    {
        m_dir->dir("sub");
        release(arm(show(m_dir->path())));
        QTRY_COMPARE(sChosen, std::vector{m_dir->path()});
    }

    void return_chooses_a_plain_item()
    {
        arm(show(m_dir->path()));
        QTest::keyClick(m_menu.get(), Qt::Key_Return);
        QTRY_COMPARE(sChosen, std::vector{m_dir->path()});
    }

    void at_most_five_items_are_under_construction()
    {
        gOptions |= OPTION_MENU_BUILD;
        std::vector<std::string> paths;
        for (int i = 0; i < 8; i++) {
            dirs(std::to_string(i), 90);
            paths.push_back(m_dir->at(std::to_string(i)));
        }
        tree_set_paths(paths);
        ca_populate_menu(m_menu.get(), x_chosen);
        QVERIFY(turns_until([] { return ca_constructions() == 5; }));
        arm(m_menu->actions().at(8)); // the sixth is refused
        QCOMPARE(ca_constructions(), 5);
        QTRY_COMPARE(ca_backgrounds(), 0);
        QCOMPARE(m_menu->actions().at(8)->menu()->actions().size(), 90);
    }

    void at_most_five_menus_are_walked_in_the_background()
    {
        gOptions |= OPTION_MENU_BUILD;
        m_dir->dir("sub");
        tree_set_paths({m_dir->path()});
        std::vector<std::unique_ptr<QMenu>> menus;
        for (int i = 0; i < 6; i++) {
            menus.push_back(std::make_unique<QMenu>());
            ca_populate_menu(menus.back().get(), x_chosen);
        }
        QCOMPARE(ca_backgrounds(), 5);
        QTRY_COMPARE(ca_backgrounds(), 0);
        QVERIFY(!menus.back()->actions().last()->menu());
    }

    void hiding_stops_and_arming_goes_on_behind_the_last_item_data()
    {
        QTest::addColumn<bool>("vanishes");
        QTest::newRow("the last item is found again") << false;
        QTest::newRow("the last item is gone") << true;
    }
    void hiding_stops_and_arming_goes_on_behind_the_last_item()
    {
        QFETCH(bool, vanishes);
        gOptions |= OPTION_MENU_BUILD;
        dirs("d", 90);
        QAction *item = show(m_dir->at("d"));
        QVERIFY(turns_until([item] { return item->menu() != nullptr; }));
        m_menu->hide();
        QCOMPARE(ca_constructions() + ca_backgrounds(), 0);
        const QStringList before = x_texts(item->menu());
        QVERIFY(before.size() < 90);
        if (vanishes)
            m_dir->remove("d/" + before.last().toStdString());
        m_menu->popup(QPoint(0, 0));
        arm(item);
        QTRY_COMPARE(ca_constructions(), 0);
        QStringList after = x_texts(item->menu());
        QCOMPARE(after.mid(0, before.size()), before);
        QCOMPARE(after.size(), 90);
        QCOMPARE(after.removeDuplicates(), 0);
    }

    void destroying_the_menu_ends_its_work()
    {
        gOptions |= OPTION_MENU_BUILD;
        dirs("d", 90);
        show(m_dir->at("d"));
        QVERIFY(turns_until([] { return ca_constructions() == 1; }));
        m_menu = std::make_unique<QMenu>();
        QTRY_COMPARE(ca_constructions() + ca_backgrounds(), 0);
    }

    void drops_are_taken_and_do_nothing()
    {
        show(m_dir->path());
        QVERIFY(m_menu->acceptDrops());
        QMimeData data;
        QDragEnterEvent enter(QPoint(5, 5), Qt::MoveAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(m_menu.get(), &enter);
        QVERIFY(enter.isAccepted());
        QDropEvent drop(QPointF(5, 5), Qt::MoveAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(m_menu.get(), &drop);
        QVERIFY(drop.isAccepted());
        QCOMPARE(drop.dropAction(), Qt::IgnoreAction);
        QVERIFY(sChosen.empty());
    }
};

} // namespace tav

QTEST_MAIN(tav::CaTest)
#include "ca_qtest.moc"

// The menu of a directory with more subdirectories than the screen has room for: every row is
// reached by keys, letters, the wheel and the arrows at its ends, and works like any other.
#include "commands/dtm.h"
#include "commands/dtm_long.h"
#include "platform/ui_gate.h"
#include "platform/worker.h"
#include "testdir.h"

#include <QAccessible>
#include <QScreen>
#include <QTest>
#include <QWheelEvent>

namespace tav {

namespace {

constexpr int COUNT = 2000; // subdirectories "0" to "1999", below 1990 one "below"

std::vector<std::string> sChosen;
int x_chosen(const char *path)
{
    sChosen.emplace_back(path);
    return 0;
}

} // namespace

class DtmLongTest : public QObject {
    Q_OBJECT

    std::unique_ptr<TestDir> m_dir;
    std::unique_ptr<QMenu> m_menu;
    DirMenuItem *m_item = nullptr;

    DtmLongMenu *menu() { return qobject_cast<DtmLongMenu *>(m_item->submenu); }
    int shown() { return static_cast<int>(m_item->items.size()); }
    DirMenuItem *active() { return dynamic_cast<DirMenuItem *>(menu()->activeAction()); }
    QString label() { return active() ? active()->text() : QString(); }
    static QString label(int row) { return QString::number(row) + QLatin1Char('/'); }
    void press(int key) { QTest::keyClick(menu(), Qt::Key(key)); }
    void move_to(const QAction *item)
    {
        QTest::mouseMove(menu(), menu()->actionGeometry(const_cast<QAction *>(item)).center());
    }
    QAction *arrow(const char *name)
    {
        for (QAction *action : menu()->actions())
            if (action->objectName() == QLatin1String(name))
                return action;
        return nullptr;
    }
    void turn_wheel(int notches)
    {
        QWheelEvent event(QPointF(5, 50), menu()->mapToGlobal(QPointF(5, 50)), {},
                          QPoint(0, -120 * notches), Qt::NoButton, {}, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(menu(), &event);
    }

private Q_SLOTS:
    void initTestCase()
    {
        ui_gate_open();
        m_dir = std::make_unique<TestDir>();
        for (int i = 0; i < COUNT; i++)
            m_dir->dir("many/" + std::to_string(i));
        m_dir->dir("many/1990/below");
        m_dir->dir("many/x&y");
    }
    void init()
    {
        sChosen.clear();
        m_menu = std::make_unique<QMenu>();
        m_item = dtm_add_item(m_menu.get(), m_dir->at("many"), "many", 0, x_chosen);
        m_menu->popup(QPoint(0, 0));
        m_menu->setActiveAction(m_item);
        QTRY_VERIFY(menu() && menu()->isVisible());
    }
    void cleanup()
    {
        m_menu.reset();
        QTRY_COMPARE(worker_count(), 0);
    }
    void cleanupTestCase() { m_dir.reset(); }

    void has_items_for_the_rows_that_fit_only_and_is_no_higher_than_the_screen()
    {
        QVERIFY(shown() > 5 && shown() < 200);
        QVERIFY(menu()->height() <= menu()->screen()->availableGeometry().height());
        const int row = menu()->actionGeometry(m_item->items[0]).height();
        QVERIFY(menu()->height() + row > menu()->screen()->availableGeometry().height() - row);
        for (int i = 0; i < shown(); i++)
            QCOMPARE(m_item->items[i]->text(), label(i));
    }

    void down_goes_on_past_the_last_row_that_is_shown()
    {
        press(Qt::Key_Down);
        QCOMPARE(label(), label(0));
        for (int i = 1; i < shown() + 3; i++)
            press(Qt::Key_Down);
        QCOMPARE(label(), label(shown() + 2));
        QCOMPARE(menu()->top(), size_t{3});
        QCOMPARE(m_item->items[0]->text(), label(3));
        for (int i = 0; i < shown() + 1; i++)
            press(Qt::Key_Up);
        QCOMPARE(label(), label(1));
        QCOMPARE(menu()->top(), size_t{1});
    }

    void down_at_the_end_and_up_at_the_beginning_go_round()
    {
        press(Qt::Key_Home);
        press(Qt::Key_Up);
        QCOMPARE(label(), QStringLiteral("x&&y/"));
        press(Qt::Key_Down);
        QCOMPARE(label(), label(0));
    }

    void up_without_a_current_row_begins_at_the_last_that_is_shown()
    {
        press(Qt::Key_Up);
        QCOMPARE(label(), label(shown() - 1));
    }

    void page_keys_home_and_end_reach_everything()
    {
        press(Qt::Key_End);
        QCOMPARE(label(), QStringLiteral("x&&y/"));
        press(Qt::Key_PageUp);
        QCOMPARE(label(), label(COUNT - shown() + 1));
        press(Qt::Key_Home);
        QCOMPARE(label(), label(0));
        press(Qt::Key_PageDown);
        QCOMPARE(label(), label(shown() - 1));
        press(Qt::Key_PageDown);
        QCOMPARE(label(), label(2 * shown() - 2));
        press(Qt::Key_PageUp);
        press(Qt::Key_PageUp);
        press(Qt::Key_PageUp);
        QCOMPARE(label(), label(0));
    }

    void a_letter_goes_to_a_row_far_away()
    {
        press(Qt::Key_X);
        QCOMPARE(label(), QStringLiteral("x&&y/"));
        press(Qt::Key_9);
        QCOMPARE(label(), label(9));
        press(Qt::Key_9);
        QCOMPARE(label(), label(90));
    }

    void the_wheel_scrolls_three_rows_a_notch_and_stops_at_the_ends()
    {
        turn_wheel(1);
        QCOMPARE(menu()->top(), size_t{3});
        turn_wheel(-5);
        QCOMPARE(menu()->top(), size_t{0});
        turn_wheel(5000);
        QCOMPARE(menu()->top() + size_t(shown()), size_t{COUNT + 1});
        QCOMPARE(m_item->items.last()->text(), QStringLiteral("x&&y/"));
    }

    void resting_on_an_arrow_scrolls_faster_and_faster_until_the_pointer_leaves()
    {
        move_to(arrow("dtm_down"));
        QTRY_VERIFY(menu()->top() > 60); // in less than as many steps
        move_to(m_item->items[2]);
        const size_t top = menu()->top();
        QCOMPARE(active(), m_item->items[2]);
        move_to(arrow("dtm_up"));
        QTRY_VERIFY(menu()->top() < top);
        menu()->hide();
        QVERIFY(!menu()->findChild<QTimer *>(QStringLiteral("dtm_timer"))->isActive());
    }

    void an_arrow_is_nothing_to_choose()
    {
        move_to(m_item->items[1]);
        QTest::mouseClick(menu(), Qt::LeftButton, {},
                          menu()->actionGeometry(arrow("dtm_down")).center());
        QVERIFY(menu()->isVisible());
        QVERIFY(sChosen.empty());
    }

    void a_row_scrolled_to_is_chosen_by_enter_with_its_own_path()
    {
        press(Qt::Key_X);
        QTRY_COMPARE(active()->state(), DtmState::plain);
        press(Qt::Key_Return);
        QTRY_COMPARE(sChosen, std::vector{m_dir->at("many/x&y")});
    }

    void a_row_scrolled_to_is_chosen_by_the_mouse()
    {
        turn_wheel(2);
        DirMenuItem *item = m_item->items[4];
        QTRY_COMPARE(item->state(), DtmState::plain);
        QTest::mouseClick(menu(), Qt::LeftButton, {}, menu()->actionGeometry(item).center());
        QTRY_COMPARE(sChosen, std::vector{m_dir->at("many/10")});
    }

    void a_row_scrolled_to_has_its_submenu_and_loses_it_out_of_sight()
    {
        press(Qt::Key_End);
        for (int i = 0; i < 10; i++)
            press(Qt::Key_Up);
        QCOMPARE(label(), label(1990));
        DirMenuItem *item = active();
        QTRY_COMPARE(item->state(), DtmState::cascade);
        press(Qt::Key_Right);
        QTRY_COMPARE(item->items.size(), 1);
        QCOMPARE(item->items[0]->path, m_dir->at("many/1990/below"));
        QTest::keyClick(item->submenu, Qt::Key_Left);
        QVERIFY(!item->submenu->isVisible() && menu()->isVisible());
        turn_wheel(-1);
        QCOMPARE(item->text(), label(1987));
        QVERIFY(!item->menu() && item->items.isEmpty());
        QTRY_COMPARE(item->state(), DtmState::plain);
        QVERIFY(menu()->isVisible());
    }

    void assistive_technology_hears_the_row_scrolled_to()
    {
        press(Qt::Key_X);
        QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(menu());
        QVERIFY(accessible);
        QAccessibleInterface *row = accessible->child(int(menu()->actions().indexOf(active())));
        QVERIFY(row);
        QCOMPARE(row->text(QAccessible::Name), QStringLiteral("x&y/"));
        QVERIFY(row->state().focused);
    }
};

} // namespace tav

QTEST_MAIN(tav::DtmLongTest)
#include "dtm_long_qtest.moc"

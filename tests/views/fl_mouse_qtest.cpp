// Mouse on the list, as a person gives it.
#include "fl_fixture.h"

namespace tav {

class FlMouseTest : public QObject {
    Q_OBJECT

    std::unique_ptr<FlWindow> m_window;
    std::unique_ptr<TestDir> m_dir;

    void show(int count = 8)
    {
        m_dir->dir("0");
        m_dir->many("f", count - 1);
        fl_setpath(m_dir->path().c_str());
        QCoreApplication::processEvents();
    }

    // Indexes selected, as "1 2 5".
    static std::string selected()
    {
        std::string indexes;
        for (int i = 0; i < gDir.count; ++i)
            if (gDir.entries[static_cast<size_t>(i)]->flags & DIR_SELECTED)
                indexes += (indexes.empty() ? "" : " ") + std::to_string(i);
        return fl_test_selected().find("wrong") != std::string::npos ? "wrong counts" : indexes;
    }

private Q_SLOTS:
    void init()
    {
        m_dir = std::make_unique<TestDir>();
        m_window = std::make_unique<FlWindow>();
    }
    void cleanup()
    {
        m_window.reset();
        m_dir.reset();
    }

    void click_selects_one_and_makes_it_current()
    {
        show();
        m_window->click(2);
        m_window->click(4);
        QCOMPARE(selected(), std::string("4"));
        QCOMPARE(gDir.current, 4);
        QVERIFY(gDir.entries[4]->flags & DIR_CURRENT);
        QTRY_VERIFY(gHeard.statuses >= 1);
    }

    void click_counts_as_far_right_as_the_window_goes()
    {
        show();
        QTest::mouseClick(m_window->list->viewport(), Qt::LeftButton, {},
                          QPoint(m_window->list->viewport()->width() - 2, m_window->at(3).y()));
        QCOMPARE(selected(), std::string("3"));
    }

    void click_on_the_parent_row_makes_it_current_and_selects_nothing()
    {
        show();
        m_window->click(2);
        m_window->click(DIR_PARENT);
        QCOMPARE(selected(), std::string());
        QCOMPARE(gDir.current, DIR_PARENT);
    }

    void click_among_several_selected_leaves_only_that_one()
    {
        show();
        fl_select_all();
        m_window->click(3);
        QCOMPARE(selected(), std::string("3"));
    }

    void ctrl_click_toggles()
    {
        show();
        m_window->click(1);
        m_window->click(3, Qt::ControlModifier);
        QCOMPARE(selected(), std::string("1 3"));
        m_window->click(1, Qt::ControlModifier);
        QCOMPARE(selected(), std::string("3"));
        QCOMPARE(gDir.current, 1);
    }

    void shift_click_extends_from_the_anchor_and_back_again()
    {
        show();
        m_window->click(3);
        m_window->click(6, Qt::ShiftModifier);
        QCOMPARE(selected(), std::string("3 4 5 6"));
        m_window->click(1, Qt::ShiftModifier);
        QCOMPARE(selected(), std::string("1 2 3"));
        QCOMPARE(gDir.current, 1);
    }

    void shift_click_with_ctrl_adds_to_the_selection()
    {
        show();
        m_window->click(0);
        m_window->click(3, Qt::ControlModifier);
        m_window->click(5, Qt::ShiftModifier | Qt::ControlModifier);
        QCOMPARE(selected(), std::string("0 3 4 5"));
    }

    void shift_click_up_to_the_parent_row()
    {
        show();
        m_window->click(2);
        m_window->click(DIR_PARENT, Qt::ShiftModifier);
        QCOMPARE(selected(), std::string("0 1 2"));
        QCOMPARE(gDir.current, DIR_PARENT);
    }

    void click_on_empty_space_unselects_all_and_leaves_the_cursor()
    {
        show();
        m_window->click(2);
        QTest::mouseClick(m_window->list->viewport(), Qt::LeftButton, {}, m_window->empty());
        QCOMPARE(selected(), std::string());
        QCOMPARE(gDir.current, 2);
        fl_select_index(1);
        QTest::mouseClick(m_window->list->viewport(), Qt::LeftButton, Qt::ControlModifier,
                          m_window->empty());
        QCOMPARE(selected(), std::string("1")); // Ctrl keeps what there is
    }

    void drag_over_rows_extends_the_selection()
    {
        show();
        m_window->pull({m_window->at(2), m_window->at(3), m_window->at(6), m_window->at(4)});
        QCOMPARE(selected(), std::string("2 3 4"));
        QCOMPARE(gDir.current, 4);
        QCOMPARE(gHeard.drags, 0);
    }

    void drag_over_rows_with_ctrl_gives_back_what_it_leaves()
    {
        show();
        m_window->click(5);
        m_window->pull({m_window->at(2), m_window->at(6), m_window->at(3)}, Qt::ControlModifier);
        QCOMPARE(selected(), std::string("2 3 5"));
    }

    void drag_passes_the_anchor_to_the_other_side()
    {
        show();
        m_window->pull({m_window->at(4), m_window->at(6), m_window->at(1)});
        QCOMPARE(selected(), std::string("1 2 3 4"));
    }

    void band_from_empty_space_selects_the_rows_it_meets()
    {
        show();
        m_window->pull({m_window->empty(), m_window->at(5)});
        QCOMPARE(selected(), std::string("5 6 7"));
        m_window->pull({m_window->empty(), m_window->at(3), m_window->at(6), m_window->empty()});
        QCOMPARE(selected(), std::string());
    }

    void band_with_ctrl_keeps_what_is_selected()
    {
        show();
        m_window->click(1);
        m_window->pull({m_window->empty(), m_window->at(7)}, Qt::ControlModifier);
        QCOMPARE(selected(), std::string("1 7"));
    }

    void selection_taken_out_of_the_list_starts_a_drag()
    {
        show();
        fl_select_index(2);
        fl_select_index(3);
        m_window->pull({m_window->at(3), QPoint(-20, m_window->at(3).y())});
        QCOMPARE(gHeard.drags, 1);
        QCOMPARE(selected(), std::string("2 3")); // whole, as it was
        m_window->pull({m_window->at(2), QPoint(30, -60)});
        QCOMPARE(gHeard.drags, 2);
    }

    void pressed_row_that_leaves_at_the_side_is_dragged()
    {
        show();
        m_window->pull({m_window->at(3), QPoint(-20, m_window->at(3).y())});
        QCOMPARE(gHeard.drags, 1);
        QCOMPARE(selected(), std::string("3"));
    }

    void nothing_selected_starts_no_drag()
    {
        show();
        m_window->pull({m_window->at(DIR_PARENT), QPoint(-20, m_window->at(DIR_PARENT).y())});
        QCOMPARE(gHeard.drags, 0);
    }

    void moves_inside_the_list_start_no_drag_but_move_the_cursor()
    {
        show();
        fl_select_index(2);
        fl_select_index(3);
        m_window->pull({m_window->at(3), m_window->at(5)});
        QCOMPARE(gHeard.drags, 0);
        QCOMPARE(gDir.current, 5);
        QCOMPARE(selected(), std::string("2 3"));
    }

    void pulling_below_the_list_scrolls_it()
    {
        show(200);
        QWidget *viewport = m_window->list->viewport();
        QTest::mousePress(viewport, Qt::LeftButton, {}, m_window->at(2));
        QMouseEvent move(QEvent::MouseMove, QPointF(40, viewport->height() + 30),
                         viewport->mapToGlobal(QPointF(40, viewport->height() + 30)), Qt::NoButton,
                         Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(viewport, &move);
        QTRY_VERIFY(m_window->list->top() > 200);
        QTest::mouseRelease(viewport, Qt::LeftButton, {}, QPoint(40, viewport->height() + 30));
        const int top = m_window->list->top();
        QVERIFY(gDir.nselected > 10);
        QVERIFY(gDir.entries[2]->flags & DIR_SELECTED);
        QCoreApplication::processEvents();
        QCOMPARE(m_window->list->top(), top);
    }

    void double_click_opens_what_is_under_the_pointer()
    {
        show();
        m_dir->file("0/inside");
        m_window->click(3);
        QTest::mouseDClick(m_window->list->viewport(), Qt::LeftButton, {}, m_window->at(0));
        QCOMPARE(gDir.path, m_dir->at("0"));
        QTest::mouseDClick(m_window->list->viewport(), Qt::LeftButton, {},
                           m_window->at(DIR_PARENT));
        QCOMPARE(gDir.path, m_dir->path());
        QCOMPARE(fl_test_selected(), std::string("0"));
    }

    void double_click_with_ctrl_opens_nothing()
    {
        show();
        QTest::mouseDClick(m_window->list->viewport(), Qt::LeftButton, Qt::ControlModifier,
                           m_window->at(0));
        QCOMPARE(gDir.path, m_dir->path());
    }

    void double_click_on_empty_space_opens_nothing()
    {
        show();
        m_window->click(0);
        QTest::mouseDClick(m_window->list->viewport(), Qt::LeftButton, {}, m_window->empty());
        QCOMPARE(gDir.path, m_dir->path());
        QCOMPARE(selected(), std::string());
    }

    void menu_button_selects_the_row_and_opens_the_menu()
    {
        show();
        m_window->click(2);
        m_window->click(5, Qt::NoModifier, Qt::RightButton);
        QCOMPARE(selected(), std::string("5"));
        QCOMPARE(gDir.current, 5);
        QCOMPARE(gHeard.menus, 1);
        QCOMPARE(gHeard.menu_at, m_window->list->viewport()->mapToGlobal(m_window->at(5)));
    }

    void menu_button_keeps_a_selection_that_holds_the_row_and_tells_others()
    {
        show();
        fl_select_index(2);
        fl_select_index(5);
        const int notifies = gHeard.notifies;
        m_window->click(5, Qt::NoModifier, Qt::RightButton);
        QCOMPARE(selected(), std::string("2 5"));
        QCOMPARE(gHeard.notifies, notifies + 1);
    }

    void menu_button_on_empty_space_unselects_all()
    {
        show();
        fl_select_index(2);
        QTest::mouseClick(m_window->list->viewport(), Qt::RightButton, {}, m_window->empty());
        QCOMPARE(selected(), std::string());
        QCOMPARE(gHeard.menus, 1);
    }

    void menu_button_on_the_parent_row()
    {
        show();
        fl_select_index(2);
        m_window->click(DIR_PARENT, Qt::NoModifier, Qt::RightButton);
        QCOMPARE(selected(), std::string());
        QCOMPARE(gDir.current, DIR_PARENT);
        QCOMPARE(gHeard.menus, 1);
    }

    void click_ends_typing()
    {
        show();
        gHeard.clears = 0;
        m_window->click(1);
        QVERIFY(gHeard.clears >= 1);
    }

    void wheel_scrolls()
    {
        show(200);
        const QPointF at(50, 50);
        QWheelEvent wheel(at, m_window->list->viewport()->mapToGlobal(at), {}, {0, -120},
                          Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(m_window->list->viewport(), &wheel);
        QVERIFY(m_window->list->top() > 0);
    }

    void rebuild_in_the_middle_of_a_pull_ends_it()
    {
        show();
        QTest::mousePress(m_window->list->viewport(), Qt::LeftButton, {}, m_window->at(2));
        m_dir->remove("f000006");
        m_dir->remove("f000005");
        fl_refresh();
        const QPointF at = m_window->at(4);
        QMouseEvent move(QEvent::MouseMove, at, m_window->list->viewport()->mapToGlobal(at),
                         Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(m_window->list->viewport(), &move);
        QTest::mouseRelease(m_window->list->viewport(), Qt::LeftButton, {}, m_window->at(4));
        QCOMPARE(selected(), std::string());
    }
};

} // namespace tav

QTEST_MAIN(tav::FlMouseTest)
#include "fl_mouse_qtest.moc"

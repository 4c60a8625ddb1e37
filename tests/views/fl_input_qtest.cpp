// Keys on the list, as a person gives them, and the seam of the key interpreter.
#include "fl_fixture.h"

#include <QAction>
#include <QInputMethodEvent>

namespace tav {

class FlInputTest : public QObject {
    Q_OBJECT

    std::unique_ptr<FlWindow> m_window;
    std::unique_ptr<TestDir> m_dir;

    void show(int count = 8)
    {
        m_dir->many("f", count);
        fl_setpath(m_dir->path().c_str());
        QCoreApplication::processEvents();
    }

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
        gConfig->key_timeout = 1500;
        m_window.reset();
        m_dir.reset();
    }

    void cursor_keys_move_and_select()
    {
        show();
        m_window->key(Qt::Key_Down);
        QCOMPARE(gDir.current, 1);
        QCOMPARE(selected(), std::string("1"));
        m_window->key(Qt::Key_Down);
        m_window->key(Qt::Key_Up);
        QCOMPARE(selected(), std::string("1"));
    }

    void cursor_stops_at_both_ends()
    {
        show();
        m_window->key(Qt::Key_Up);
        QCOMPARE(gDir.current, DIR_PARENT);
        QCOMPARE(selected(), std::string());
        m_window->key(Qt::Key_Up);
        QCOMPARE(gDir.current, DIR_PARENT);
        m_window->key(Qt::Key_End);
        QCOMPARE(gDir.current, 7);
        m_window->key(Qt::Key_Down);
        QCOMPARE(gDir.current, 7);
        QCOMPARE(selected(), std::string("7"));
    }

    void home_goes_to_the_first_row()
    {
        show();
        m_window->key(Qt::Key_End);
        m_window->key(Qt::Key_Home);
        QCOMPARE(gDir.current, DIR_PARENT);
    }

    void pages_move_by_what_fits()
    {
        show(200);
        m_window->key(Qt::Key_PageDown);
        const int page = gDir.current;
        QVERIFY(page > 3 && page < 40);
        m_window->key(Qt::Key_PageDown);
        QCOMPARE(gDir.current, 2 * page);
        const QRect row = m_window->list->row_rect(fl_row_of_index(gDir.current));
        QVERIFY(row.top() >= 0 && row.bottom() < m_window->list->viewport()->height());
        m_window->key(Qt::Key_PageUp);
        m_window->key(Qt::Key_PageUp);
        QCOMPARE(gDir.current, 0);
        m_window->key(Qt::Key_PageUp);
        QCOMPARE(gDir.current, DIR_PARENT);
        QCOMPARE(m_window->list->top(), 0);
    }

    void shift_extends_and_takes_back()
    {
        show();
        m_window->click(3);
        m_window->key(Qt::Key_Down, Qt::ShiftModifier);
        m_window->key(Qt::Key_Down, Qt::ShiftModifier);
        QCOMPARE(selected(), std::string("3 4 5"));
        m_window->key(Qt::Key_Up, Qt::ShiftModifier);
        QCOMPARE(selected(), std::string("3 4"));
        m_window->key(Qt::Key_Home, Qt::ShiftModifier);
        QCOMPARE(selected(), std::string("0 1 2 3"));
        m_window->key(Qt::Key_End, Qt::ShiftModifier);
        QCOMPARE(selected(), std::string("3 4 5 6 7"));
    }

    void shift_begins_at_the_cursor_when_nothing_was_clicked()
    {
        show();
        m_window->key(Qt::Key_Down, Qt::ShiftModifier);
        QCOMPARE(selected(), std::string("0 1"));
    }

    void shift_extends_from_an_entry_that_was_found_by_name()
    {
        show();
        m_window->click(1);
        fl_unselect_all(nullptr);
        fl_select_index(fl_goto("f000005", 0, FL_EXACT));
        m_window->key(Qt::Key_Down, Qt::ShiftModifier);
        QCOMPARE(selected(), std::string("5 6"));
        fl_goto("f000003", 0, FL_EXACT);
        m_window->click(4, Qt::ShiftModifier);
        QCOMPARE(selected(), std::string("3 4"));
    }

    void shift_extends_from_the_directory_just_left()
    {
        m_dir->dir("f000003/inside");
        m_dir->file("f000002");
        m_dir->file("f000004");
        fl_setpath(m_dir->at("f000003").c_str());
        fl_up();
        m_window->key(Qt::Key_Down, Qt::ShiftModifier);
        QCOMPARE(fl_test_selected(), std::string("f000003 f000004"));
    }

    void ctrl_moves_without_selecting()
    {
        show();
        m_window->click(2);
        m_window->key(Qt::Key_Down, Qt::ControlModifier);
        m_window->key(Qt::Key_Down, Qt::ControlModifier);
        QCOMPARE(gDir.current, 4);
        QCOMPARE(selected(), std::string("2"));
    }

    void space_toggles_and_moves_down()
    {
        show();
        m_window->key(Qt::Key_Space);
        m_window->key(Qt::Key_Space);
        QCOMPARE(selected(), std::string("0 1"));
        QCOMPARE(gDir.current, 2);
        m_window->key(Qt::Key_Up, Qt::ControlModifier);
        m_window->key(Qt::Key_Space);
        QCOMPARE(selected(), std::string("0"));
        m_window->key(Qt::Key_End, Qt::ControlModifier);
        m_window->key(Qt::Key_Space); // the last row stays the cursor's
        QCOMPARE(selected(), std::string("0 7"));
        QCOMPARE(gDir.current, 7);
    }

    void space_on_the_parent_row_selects_nothing()
    {
        show();
        fl_goto_index(DIR_PARENT);
        m_window->key(Qt::Key_Space);
        QCOMPARE(selected(), std::string());
        QCOMPARE(gDir.current, 0);
    }

    void ctrl_space_toggles_in_place()
    {
        show();
        fl_goto_index(3);
        m_window->key(Qt::Key_Space, Qt::ControlModifier);
        QCOMPARE(selected(), std::string("3"));
        QCOMPARE(gDir.current, 3);
        m_window->key(Qt::Key_Space, Qt::ControlModifier);
        QCOMPARE(selected(), std::string());
    }

    void keys_work_when_no_entry_is_current()
    {
        show();
        for (int key : {Qt::Key_Down, Qt::Key_Up, Qt::Key_PageDown, Qt::Key_Space}) {
            fl_goto_index(DIR_NONE);
            m_window->key(key);
            QVERIFY(gDir.current >= DIR_PARENT && gDir.current < gDir.count);
        }
        fl_goto_index(DIR_NONE);
        m_window->key(Qt::Key_Down);
        QCOMPARE(gDir.current, DIR_PARENT); // the first row
    }

    void enter_opens_once()
    {
        show();
        m_window->key(Qt::Key_Return);
        m_window->key(Qt::Key_Enter, Qt::KeypadModifier);
        QCOMPARE(gHeard.opens, 2);
        QKeyEvent again(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, QString(), true);
        QApplication::sendEvent(m_window->list, &again);
        QCOMPARE(gHeard.opens, 2); // held down
        m_window->key(Qt::Key_Return, Qt::AltModifier);
        QCOMPARE(gHeard.opens, 2);
    }

    void every_key_without_ctrl_and_alt_is_given_to_the_interpreter_first()
    {
        show();
        QTest::keyClicks(m_window->list, QStringLiteral("aB/"));
        QCOMPARE(gHeard.typed, QStringLiteral("aB/"));
        gHeard.keys.clear();
        m_window->key(Qt::Key_Return);
        m_window->key(Qt::Key_Down);
        m_window->key(Qt::Key_Escape);
        QCOMPARE(gHeard.keys.size(), size_t(3));
        m_window->key(Qt::Key_A, Qt::ControlModifier);
        m_window->key(Qt::Key_A, Qt::AltModifier);
        QCOMPARE(gHeard.keys.size(), size_t(3));
    }

    void taken_key_is_echoed_and_moves_nothing()
    {
        show();
        gHeard.key_answer = 1;
        m_window->key(Qt::Key_Down);
        QCOMPARE(gDir.current, 0);
        QCOMPARE(gHeard.echoes, 1);
        m_window->key(Qt::Key_Return);
        QCOMPARE(gHeard.opens, 0);
    }

    void taken_key_is_echoed_after_the_status_of_what_it_selected()
    {
        show();
        static QStringList sOrder;
        sOrder.clear();
        gFlHooks.key = [](const QKeyEvent &) {
            fl_select_index(1);
            return 1;
        };
        gFlHooks.status_update = [] { sOrder << QStringLiteral("status"); };
        gFlHooks.key_echo = [] { sOrder << QStringLiteral("echo"); };
        QTest::keyClick(m_window->list, Qt::Key_F);
        QCoreApplication::processEvents();
        QCOMPARE(sOrder, (QStringList{QStringLiteral("status"), QStringLiteral("echo")}));
    }

    void ended_typing_clears_the_status_and_stops_the_timer()
    {
        show();
        gConfig->key_timeout = 30;
        gHeard.key_answer = 1;
        QTest::keyClick(m_window->list, Qt::Key_F);
        gHeard.key_answer = -1;
        m_window->status1->setText(QStringLiteral("/f"));
        gHeard.clears = gHeard.statuses = 0;
        QTest::keyClick(m_window->list, Qt::Key_Escape);
        QCOMPARE(m_window->status1->text(), QString());
        QVERIFY(gHeard.clears >= 1);
        QVERIFY(!test_wait(
            [] {
                QCoreApplication::processEvents();
                return gHeard.statuses > 0;
            },
            120));
    }

    void time_out_forgets_the_keys_and_shows_the_status()
    {
        show();
        gConfig->key_timeout = 20;
        gHeard.key_answer = 1;
        QTest::keyClick(m_window->list, Qt::Key_F);
        gHeard.clears = gHeard.statuses = 0;
        QTRY_COMPARE(gHeard.statuses, 1);
        QVERIFY(gHeard.clears >= 1);
    }

    void moving_while_typing_shows_the_status_again()
    {
        show();
        fl_status_flush();
        gHeard.statuses = 0;
        m_window->key(Qt::Key_Down, Qt::ControlModifier);
        QCoreApplication::processEvents();
        QCOMPARE(gHeard.statuses, 0); // nothing was typed, and the selection is what it was
        gHeard.typing = true;
        gHeard.clears = 0;
        m_window->key(Qt::Key_Down, Qt::ControlModifier);
        QVERIFY(gHeard.clears >= 1);
        QTRY_COMPARE(gHeard.statuses, 1);
    }

    void time_out_of_zero_or_less_never_comes()
    {
        show();
        gHeard.key_answer = 1;
        for (int timeout : {0, -5}) {
            gConfig->key_timeout = timeout;
            QTest::keyClick(m_window->list, Qt::Key_F);
            QCoreApplication::processEvents();
            gHeard.clears = 0;
            QVERIFY(!test_wait(
                [] {
                    QCoreApplication::processEvents();
                    return gHeard.clears > 0;
                },
                60));
        }
    }

    void typed_characters_are_not_stolen_by_shortcuts()
    {
        show();
        int stolen = 0;
        for (const char *key : {"A", "Space", "Return", "Backspace", "Del"}) {
            auto *action = new QAction(&m_window->window);
            action->setShortcut(QKeySequence(QLatin1String(key)));
            connect(action, &QAction::triggered, this, [&stolen] { ++stolen; });
            m_window->window.addAction(action);
        }
        QWindow *window = m_window->window.windowHandle();
        QTest::keyClick(window, Qt::Key_A);
        QTest::keyClick(window, Qt::Key_Space);
        QTest::keyClick(window, Qt::Key_Return);
        QCOMPARE(stolen, 0);
        QTest::keyClick(window, Qt::Key_Backspace);
        QTest::keyClick(window, Qt::Key_Delete);
        QCOMPARE(stolen, 2);
        gHeard.typing = true;
        QTest::keyClick(window, Qt::Key_Backspace);
        QCOMPARE(stolen, 2);
        gHeard.typing = false;
        m_window->field->setFocus();
        QTest::keyClick(window, Qt::Key_Return);
        QCOMPARE(stolen, 3); // the list has no say elsewhere
    }

    void text_of_an_input_method_is_typed()
    {
        show();
        QInputMethodEvent event;
        event.setCommitString(QString::fromUtf8("né語"));
        QApplication::sendEvent(m_window->list, &event);
        QCOMPARE(gHeard.typed, QString::fromUtf8("né語"));
        QInputMethodQueryEvent query(Qt::ImEnabled | Qt::ImCursorRectangle);
        QApplication::sendEvent(m_window->list, &query);
        QVERIFY(query.value(Qt::ImEnabled).toBool());
        QVERIFY(query.value(Qt::ImCursorRectangle).toRect().isValid());
    }

    void menu_key_opens_the_menu_at_the_current_row()
    {
        show(100);
        fl_goto_index(60);
        m_window->list->set_top(0);
        QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(), QPoint());
        QApplication::sendEvent(m_window->list, &event);
        QCOMPARE(gHeard.menus, 1);
        QCOMPARE(selected(), std::string("60"));
        const QPoint at = m_window->list->viewport()->mapFromGlobal(gHeard.menu_at);
        QVERIFY(m_window->list->row_rect(fl_row_of_index(60)).contains(at));
        QVERIFY(m_window->list->viewport()->rect().contains(at));
    }

    void left_and_right_scroll_sideways()
    {
        show();
        for (int column = 1; column <= FL_COLUMNS; ++column)
            fl_set_column_width(column, 400);
        m_window->key(Qt::Key_Right);
        QVERIFY(m_window->list->left() > 0);
        m_window->key(Qt::Key_Left);
        QCOMPARE(m_window->list->left(), 0);
    }

    void key_that_is_not_the_lists_goes_on()
    {
        show();
        for (int key : {Qt::Key_F5, Qt::Key_Delete, Qt::Key_Backspace}) {
            QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
            QApplication::sendEvent(m_window->list, &event);
            QVERIFY(!event.isAccepted());
        }
    }

    void tab_leaves_the_list()
    {
        show();
        QTest::keyClick(m_window->window.windowHandle(), Qt::Key_Tab);
        QVERIFY(QApplication::focusWidget() != m_window->list);
    }

    void end_and_home_on_many_entries_stay_exact()
    {
        show(3000);
        m_window->key(Qt::Key_End, Qt::ShiftModifier);
        QCOMPARE(gDir.nselected, 3000);
        QCOMPARE(m_window->list->verticalScrollBar()->value(),
                 m_window->list->verticalScrollBar()->maximum());
    }
};

} // namespace tav

QTEST_MAIN(tav::FlInputTest)
#include "fl_input_qtest.moc"

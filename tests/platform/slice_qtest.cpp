// Slices of the main loop during long work on the main thread.
#include "platform/ui_gate.h"
#include "platform/ui_slice.h"
#include "platform/w.h"

#include <QAction>
#include <QApplication>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QMimeData>
#include <QPushButton>
#include <QScrollArea>
#include <QTest>
#include <QTimer>
#include <QVBoxLayout>

using namespace tav;

namespace {

// A window with a text field, a button and contents that scroll; counts what reaches it.
class Window : public QWidget {
public:
    Window()
    {
        auto *layout = new QVBoxLayout(this);
        layout->addWidget(edit = new QLineEdit);
        layout->addWidget(button = new QPushButton(QStringLiteral("press")));
        layout->addWidget(area = new QScrollArea);
        connect(button, &QPushButton::clicked, this, [this] { clicks++; });
        area->viewport()->installEventFilter(this);
        action.setShortcut(QKeySequence(QStringLiteral("Ctrl+K")));
        connect(&action, &QAction::triggered, this, [this] { triggered++; });
        addAction(&action);
    }

    QLineEdit *edit;
    QPushButton *button;
    QScrollArea *area;
    QAction action;
    int clicks = 0, triggered = 0, presses = 0, releases = 0, closes = 0, paints = 0;

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        presses += event->type() == QEvent::MouseButtonPress;
        releases += event->type() == QEvent::MouseButtonRelease;
        return false;
    }
    void closeEvent(QCloseEvent *event) override
    {
        closes++;
        event->accept();
    }
    void paintEvent(QPaintEvent *) override { paints++; }
};

// Runs slices until what waits now has had its turn. False when Escape asked for the end.
bool x_slice()
{
    // On a busy machine one slice may end before it came to what waits: run until a mark set now
    // has passed, then once more for what that brought about.
    bool passed = false, go_on = true;
    QTimer::singleShot(0, qApp, [&passed] { passed = true; });
    QElapsedTimer since, limit;
    limit.start();
    while (!passed && limit.elapsed() < 5000)
        go_on = ui_slice_run() && go_on;
    since.start();
    while (since.elapsed() <= 3 * UI_SLICE_EVERY + 2)
        go_on = ui_slice_run() && go_on;
    return go_on;
}

} // namespace

class SliceTest : public QObject {
    Q_OBJECT

    std::unique_ptr<Window> window_;

private Q_SLOTS:
    void init()
    {
        ui_gate_open();
        window_ = std::make_unique<Window>();
        window_->show();
        QVERIFY(QTest::qWaitForWindowActive(window_.get()));
        window_->edit->setFocus();
    }
    void cleanup()
    {
        ui_slice_end();
        QCoreApplication::processEvents();
        window_.reset();
        ui_gate_close();
    }

    void a_second_work_is_refused()
    {
        QVERIFY(ui_slice_begin());
        QVERIFY(ui_slice_is_active());
        QVERIFY(!ui_slice_begin());
        ui_slice_end();
        QVERIFY(!ui_slice_is_active());
        QVERIFY(ui_slice_begin());
    }

    void keys_wait_and_arrive_in_their_order()
    {
        QVERIFY(ui_slice_begin());
        QTimer::singleShot(0, this, [this] {
            QTest::keyClicks(window_->edit, QStringLiteral("abc"));
            QTest::keyClick(window_->edit, Qt::Key_Backspace);
            QTest::keyClick(window_->edit, Qt::Key_X);
        });
        QVERIFY(x_slice());
        QCOMPARE(window_->edit->text(), QString());
        ui_slice_end();
        QCOMPARE(window_->edit->text(), QString());
        QTRY_COMPARE(window_->edit->text(), QStringLiteral("abx"));
    }

    void a_key_after_the_end_does_not_overtake_those_that_were_kept()
    {
        QVERIFY(ui_slice_begin());
        QTest::keyClicks(window_->edit, QStringLiteral("ab"));
        ui_slice_end();
        QTest::keyClick(window_->edit, Qt::Key_C);
        QTRY_COMPARE(window_->edit->text(), QStringLiteral("abc"));
    }

    void keys_of_a_window_that_is_blocked_meanwhile_wait_too()
    {
        QVERIFY(ui_slice_begin());
        wblock(window_.get(), 1);
        QTest::keyClick(window_->edit, Qt::Key_A);
        wblock(window_.get(), 0);
        ui_slice_end();
        QTRY_COMPARE(window_->edit->text(), QStringLiteral("a"));
    }

    void a_shortcut_waits_and_is_still_a_shortcut()
    {
        QVERIFY(ui_slice_begin());
        QTimer::singleShot(
            0, this, [this] { QTest::keyClick(window_->edit, Qt::Key_K, Qt::ControlModifier); });
        x_slice();
        QCOMPARE(window_->triggered, 0);
        ui_slice_end();
        QTRY_COMPARE(window_->triggered, 1);
    }

    void escape_stops_and_is_not_delivered()
    {
        QVERIFY(ui_slice_begin());
        QTimer::singleShot(0, this, [this] { QTest::keyClick(window_->edit, Qt::Key_Escape); });
        QVERIFY(!x_slice());
        QVERIFY(!ui_slice_run());
        ui_slice_end();
        QVERIFY(ui_slice_begin());
        QVERIFY(ui_slice_run());
    }

    void the_loop_runs_on_after_escape_for_who_still_has_to_finish()
    {
        QVERIFY(ui_slice_begin());
        QTimer::singleShot(0, this, [this] { QTest::keyClick(window_->edit, Qt::Key_Escape); });
        QVERIFY(!x_slice());
        bool ran = false;
        QTimer::singleShot(0, this, [&ran] { ran = true; });
        QVERIFY(!x_slice());
        QVERIFY(ran);
    }

    void a_click_on_a_button_waits()
    {
        QVERIFY(ui_slice_begin());
        QTimer::singleShot(0, this, [this] { QTest::mouseClick(window_->button, Qt::LeftButton); });
        x_slice();
        QCOMPARE(window_->clicks, 0);
        ui_slice_end();
        QTRY_COMPARE(window_->clicks, 1);
    }

    void a_click_that_came_through_the_window_waits_too()
    {
        QVERIFY(ui_slice_begin());
        const QPoint at = window_->button->mapTo(window_.get(), QPoint(4, 4));
        QTest::mouseClick(window_->windowHandle(), Qt::LeftButton, {}, at);
        x_slice();
        QCOMPARE(window_->clicks, 0);
        ui_slice_end();
        QTRY_COMPARE(window_->clicks, 1);
    }

    void a_click_into_contents_that_scroll_is_dropped()
    {
        QVERIFY(ui_slice_begin());
        QTest::mouseClick(window_->area->viewport(), Qt::LeftButton);
        ui_slice_end();
        QTest::keyClick(window_->edit, Qt::Key_A);
        QTRY_COMPARE(window_->edit->text(), QStringLiteral("a"));
        QCOMPARE(window_->presses + window_->releases, 0);
    }

    void the_release_of_an_earlier_press_arrives()
    {
        QTest::mousePress(window_->area->viewport(), Qt::LeftButton);
        QVERIFY(ui_slice_begin());
        QTest::mouseRelease(window_->area->viewport(), Qt::LeftButton);
        QCOMPARE(window_->releases, 0);
        ui_slice_end();
        QTRY_COMPARE(window_->releases, 1);
        QCOMPARE(window_->presses, 1);
    }

    void mouse_and_keys_go_on_where_they_are_allowed()
    {
        QVERIFY(ui_slice_begin(window_->button));
        QTest::mouseClick(window_->button, Qt::LeftButton);
        QCOMPARE(window_->clicks, 1);
    }

    void a_drag_is_refused()
    {
        window_->setAcceptDrops(true);
        QVERIFY(ui_slice_begin());
        QMimeData data;
        QDragEnterEvent enter(QPoint(2, 2), Qt::CopyAction, &data, Qt::LeftButton, {});
        enter.accept();
        QCoreApplication::sendEvent(window_.get(), &enter);
        QVERIFY(!enter.isAccepted());
    }

    void the_closing_of_a_window_waits()
    {
        QVERIFY(ui_slice_begin());
        QCloseEvent close;
        QSpontaneKeyEvent::setSpontaneous(&close); // as the window's frame asks for it
        qApp->notify(window_.get(), &close);
        x_slice();
        QVERIFY(!close.isAccepted());
        QCOMPARE(window_->closes, 0);
        ui_slice_end();
        QTRY_COMPARE(window_->closes, 1);
    }

    void timers_and_painting_go_on()
    {
        bool fired = false;
        QTimer::singleShot(0, this, [&] { fired = true; });
        QVERIFY(ui_slice_begin());
        const int before = window_->paints;
        window_->update();
        x_slice();
        QVERIFY(fired);
        QVERIFY(window_->paints > before);
    }

    void what_workers_ask_for_waits()
    {
        bool ran = false;
        QVERIFY(ui_slice_begin());
        ui_post([&] { ran = true; });
        x_slice();
        QVERIFY(!ran);
        ui_slice_end();
        QTRY_VERIFY(ran);
    }

    void a_kept_key_that_begins_another_work_keeps_the_order()
    {
        connect(&window_->action, &QAction::triggered, this, [this] {
            QVERIFY(ui_slice_begin());
            QTest::keyClick(window_->edit, Qt::Key_C);
            x_slice();
            ui_slice_end();
        });
        QVERIFY(ui_slice_begin());
        QTest::keyClick(window_->edit, Qt::Key_A);
        QTest::keyClick(window_->edit, Qt::Key_K, Qt::ControlModifier);
        QTest::keyClick(window_->edit, Qt::Key_B);
        ui_slice_end();
        QTRY_COMPARE(window_->edit->text(), QStringLiteral("abc"));
        QCOMPARE(window_->triggered, 1);
    }

    void a_widget_that_died_meanwhile_gets_nothing()
    {
        auto *doomed = new QPushButton(window_.get());
        doomed->show();
        QVERIFY(ui_slice_begin());
        QTest::mouseClick(doomed, Qt::LeftButton);
        delete doomed;
        ui_slice_end();
        QTest::keyClick(window_->edit, Qt::Key_A);
        QTRY_COMPARE(window_->edit->text(), QStringLiteral("a"));
    }
};

QTEST_MAIN(SliceTest)
#include "slice_qtest.moc"

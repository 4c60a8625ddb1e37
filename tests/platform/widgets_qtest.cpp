// Timers, work procedures, texts, focus, centring and search of the widget utilities.
#include "platform/style.h"
#include "platform/w.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <algorithm>

using namespace tav;

class WidgetsTest : public QObject {
    Q_OBJECT

    // Lets the main loop turn until a timer of that many ms, started now, has fired.
    static void turn(int ms)
    {
        bool over = false;
        QTimer::singleShot(ms, Qt::PreciseTimer, qApp, [&over] { over = true; });
        QTRY_VERIFY(over);
    }

private Q_SLOTS:
    void a_box_to_check_can_be_seen_on_a_dark_window()
    {
        style_install();
        QCheckBox box;
        const QColor window(0x2b, 0x2d, 0x30);
        box.setPalette(QPalette(window));
        const QImage image = box.grab().toImage();
        int lightest = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                lightest = std::max(lightest, qGray(image.pixel(x, y)));
        QVERIFY2(lightest > qGray(window.rgb()) + 60, qPrintable(QString::number(lightest)));
    }

    void a_timer_repeats_and_hands_over_its_widget()
    {
        QWidget widget;
        int calls = 0;
        QObject *handed = nullptr;
        wtimer_attach(&widget, 1, [&](QObject *object) { calls++, handed = object; });
        QTRY_VERIFY(calls >= 3);
        QCOMPARE(handed, &widget);
    }

    void a_callback_that_detaches_its_own_timer_is_not_called_again()
    {
        QWidget widget;
        int calls = 0;
        wtimer_attach(&widget, 1, [&](QObject *object) {
            calls++;
            wtimer_detach(object);
        });
        QTRY_COMPARE(calls, 1);
        turn(20);
        QCOMPARE(calls, 1);
    }

    void attaching_again_replaces_callback_and_period()
    {
        QWidget widget;
        int first = 0, second = 0;
        wtimer_attach(&widget, 1, [&](QObject *) { first++; });
        wtimer_attach(&widget, 2, [&](QObject *) { second++; });
        QTRY_VERIFY(second >= 2);
        QCOMPARE(first, 0);
        int children = 0;
        for (const QObject *child : widget.children())
            children += child->isWidgetType() ? 0 : 1;
        QCOMPARE(children, 1);
    }

    void a_callback_may_change_its_own_timer()
    {
        QWidget widget;
        int first = 0, second = 0;
        wtimer_attach(&widget, 1, [&](QObject *object) {
            first++;
            wtimer_attach(object, 1, [&](QObject *) { second++; });
        });
        QTRY_VERIFY(second >= 2);
        QCOMPARE(first, 1);
    }

    void a_period_of_0_is_stopped()
    {
        QWidget widget;
        int calls = 0;
        wtimer_attach(&widget, 0, [&](QObject *) { calls++; });
        turn(10);
        QCOMPARE(calls, 0);
        wtimer_trigger(&widget);
        QCOMPARE(calls, 1);
        wtimer_attach(&widget, 1, [&](QObject *) { calls++; });
        wtimer_attach(&widget, 0, [&](QObject *) { calls++; });
        turn(10);
        QCOMPARE(calls, 1);
    }

    void triggering_calls_at_once_and_leaves_the_timer_running()
    {
        QWidget widget;
        int calls = 0;
        wtimer_attach(&widget, 5, [&](QObject *) { calls++; });
        wtimer_trigger(&widget);
        QCOMPARE(calls, 1);
        QTRY_VERIFY(calls >= 2);
    }

    void a_callback_may_delete_its_widget()
    {
        QPointer<QWidget> widget = new QWidget;
        wtimer_attach(widget, 1, [](QObject *object) { delete object; });
        QTRY_VERIFY(widget.isNull());
        widget = new QWidget;
        wtimer_attach(widget, 1000, [](QObject *object) { delete object; });
        wtimer_trigger(widget);
        QVERIFY(widget.isNull());
    }

    void a_widget_without_a_timer_is_left_alone()
    {
        QWidget widget;
        wtimer_trigger(&widget);
        wtimer_detach(&widget);
        wtimer_trigger(nullptr);
        wtimer_detach(nullptr);
        wproc_detach(&widget);
        wproc_finished(&widget);
        wproc_detach(nullptr);
        QVERIFY(widget.children().isEmpty());
    }

    void work_runs_until_it_says_so()
    {
        QWidget widget;
        int steps = 0;
        wproc_attach(&widget, [&] { return ++steps < 5 ? W_CONTINUE : W_END; });
        QTRY_COMPARE(steps, 5);
        turn(5);
        QCOMPARE(steps, 5);
    }

    void work_may_finish_itself_or_be_detached()
    {
        QWidget widget;
        int steps = 0;
        wproc_attach(&widget, [&] {
            if (++steps == 3)
                wproc_finished(&widget);
            return W_CONTINUE;
        });
        QTRY_COMPARE(steps, 3);
        turn(5);
        QCOMPARE(steps, 3);
        wproc_attach(&widget, [&] { return steps++, W_CONTINUE; });
        wproc_detach(&widget);
        turn(5);
        QCOMPARE(steps, 3);
    }

    void work_may_attach_its_successor_and_delete_its_widget()
    {
        QPointer<QWidget> widget = new QWidget;
        bool second = false;
        wproc_attach(widget, [&] {
            wproc_attach(widget, [&] {
                second = true;
                delete widget.data();
                return W_CONTINUE;
            });
            return W_END;
        });
        QTRY_VERIFY(second);
        QVERIFY(widget.isNull());
    }

    void focus_goes_to_the_widget_and_its_window()
    {
        QWidget window, other;
        auto *layout = new QVBoxLayout(&window);
        auto *first = new QLineEdit, *second = new QLineEdit;
        layout->addWidget(first);
        layout->addWidget(second);
        window.show();
        other.show();
        other.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&other));
        wfocus(second);
        QVERIFY(QTest::qWaitForWindowActive(&window));
        QVERIFY(second->hasFocus());
        wfocus(nullptr);
    }

    void texts_go_where_a_widget_shows_them()
    {
        QWidget window;
        QGroupBox group(&window);
        QLabel label(&window);
        QPushButton button(&window);
        QLineEdit edit(&window);
        QComboBox box(&window);
        box.setEditable(true);
        QCOMPARE(wprintf(&window, "%d items", 3), 7);
        QCOMPARE(window.windowTitle(), QStringLiteral("3 items"));
        wprintf(&group, "%s", "a&b");
        QCOMPARE(group.title(), QStringLiteral("a&&b"));
        wprintf(&button, "%s", "a&b");
        QCOMPARE(button.text(), QStringLiteral("a&&b"));
        wprintf(&label, "%s", "<b>a&b</b>");
        QCOMPARE(label.text(), QStringLiteral("<b>a&b</b>"));
        QCOMPARE(label.textFormat(), Qt::PlainText);
        wprintf(&edit, "%5.2f|%-4s|%c", 1.5, "x", 'y');
        QCOMPARE(edit.text(), QStringLiteral(" 1.50|x   |y"));
        wprintf(&box, "%ld %lld %zu %u %#x %%", -1L, 1LL << 40, size_t(7), 3U, 255U);
        QCOMPARE(box.currentText(), QStringLiteral("-1 1099511627776 7 3 0xff %"));
    }

    void a_null_widget_answers_minus_1() { QCOMPARE(wprintf(nullptr, "x"), -1); }

    void texts_are_cut_at_255_bytes()
    {
        QWidget window;
        QLabel label(&window);
        QCOMPARE(wprintf(&label, "%s", std::string(300, 'a').c_str()), 255);
        QCOMPARE(label.text().size(), 255);
        QCOMPARE(wprintf(&label, "%s\xE2\x82\xAC", std::string(253, 'a').c_str()), 253);
        QCOMPARE(label.text().size(), 253);
        QCOMPARE(wprintf(&label, "%s\xF0\x9F\x98\x80", std::string(252, 'a').c_str()), 252);
        QCOMPARE(label.text().size(), 252);
        QCOMPARE(wprintf(&label, "%s", std::string(300, '\x80').c_str()), 255);
        QCOMPARE(wprintf(&label, "%.*s|%*d", 2, "abc", 4, 7), 7);
        QCOMPARE(label.text(), QStringLiteral("ab|   7"));
    }

    void a_window_lies_centred_over_another()
    {
        const QRect screen(0, 0, 1280, 900);
        QCOMPARE(wcenter_place({100, 100, 600, 400}, {200, 101}, screen), QPoint(300, 249));
    }

    void a_window_past_the_right_and_lower_edge_goes_25_inside()
    {
        const QRect screen(0, 0, 1280, 900);
        QCOMPARE(wcenter_place({1200, 800, 100, 100}, {300, 300}, screen),
                 QPoint(1279 - 300 - 25, 899 - 300 - 25));
    }

    void a_window_past_the_left_and_upper_edge_goes_10_inside()
    {
        const QRect screen(5, 7, 1280, 900);
        QCOMPARE(wcenter_place({0, 0, 100, 100}, {300, 300}, screen), QPoint(15, 17));
    }

    void a_window_100_pixels_wider_than_the_screen_begins_at_its_left_edge_plus_10()
    {
        const QRect screen(0, 0, 1280, 900);
        QCOMPARE(wcenter_place({300, 300, 400, 300}, {1380, 200}, screen).x(), 10);
    }

    void a_dialog_that_is_not_shown_yet_is_centred_with_the_frame_that_it_will_have()
    {
        QWidget base;
        base.setGeometry(200, 100, 400, 300);
        base.show();
        QVERIFY(QTest::qWaitForWindowExposed(&base));
        QWidget dialog(&base, Qt::Dialog);
        dialog.resize(100, 100);
        wcenter(&base, &dialog);
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        QVERIFY(dialog.frameGeometry() != dialog.geometry());
        QCOMPARE(dialog.frameGeometry().center(), base.frameGeometry().center());
        wcenter(&base, nullptr);
        wcenter(nullptr, &dialog);
    }

    void the_first_widget_of_a_class_is_found_depth_first()
    {
        QWidget window;
        auto *left = new QWidget(&window);
        auto *right = new QLabel(&window);
        auto *deep = new QTreeWidget(left);
        auto *label = new QLabel(left);
        QCOMPARE(wrecursive_find_child_class(&window, "QTreeView"), deep);
        QCOMPARE(wrecursive_find_child_class(left, "QTreeView"), deep);
        QVERIFY(wrecursive_find_child_class(&window, "QLabel") != nullptr);
        QCOMPARE(wrecursive_find_child_class(label, "QLabel"), label);
        QCOMPARE(wrecursive_find_child_class(right, "QTreeView"), nullptr);
        QCOMPARE(wrecursive_find_child_class(nullptr, "QLabel"), nullptr);
    }
};

QTEST_MAIN(WidgetsTest)
#include "widgets_qtest.moc"

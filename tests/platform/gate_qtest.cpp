// The gate between worker threads and the main thread.
#include "platform/ui_gate.h"

#include <QTest>
#include <QTimer>
#include <atomic>
#include <thread>
#include <vector>

using namespace tav;

class GateTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { ui_gate_open(); }
    void cleanup() { ui_gate_close(); }

    void a_call_runs_on_the_main_thread_and_is_waited_for()
    {
        const auto main = std::this_thread::get_id();
        std::thread::id ran;
        std::atomic<bool> answered = false;
        std::thread worker([&] {
            const bool good = ui_call([&] { ran = std::this_thread::get_id(); });
            answered = good && ran == main;
        });
        QTRY_VERIFY(answered);
        worker.join();
    }

    void a_call_from_the_main_thread_runs_at_once()
    {
        bool ran = false;
        QVERIFY(ui_call([&] { ran = true; }));
        QVERIFY(ran);
    }

    void a_call_inside_a_call_runs_at_once()
    {
        int depth = 0;
        std::atomic<bool> done = false;
        std::thread worker([&] {
            ui_call([&] { ui_call([&] { depth = 2; }); });
            done = true;
        });
        QTRY_VERIFY(done);
        worker.join();
        QCOMPARE(depth, 2);
    }

    void posted_functions_run_later_and_in_order()
    {
        std::vector<int> order;
        for (int i = 0; i < 100; i++)
            ui_post([&order, i] { order.push_back(i); });
        QVERIFY(order.empty());
        QTRY_COMPARE(order.size(), size_t(100));
        for (int i = 0; i < 100; i++)
            QCOMPARE(order[static_cast<size_t>(i)], i);
    }

    void many_workers_ask_at_once_and_one_runs_at_a_time()
    {
        int inside = 0, most = 0, total = 0;
        std::atomic<int> finished = 0;
        std::vector<std::thread> workers;
        for (int w = 0; w < 8; w++) {
            workers.emplace_back([&] {
                for (int i = 0; i < 200; i++) {
                    ui_call([&] {
                        most = std::max(most, ++inside);
                        total++;
                        inside--;
                    });
                    ui_post([&] { total++; });
                }
                finished++;
            });
        }
        QTRY_COMPARE_WITH_TIMEOUT(finished.load(), 8, 30000);
        for (std::thread &worker : workers)
            worker.join();
        QTRY_COMPARE(total, 8 * 200 * 2);
        QCOMPARE(most, 1);
    }

    void closing_refuses_everyone_who_waits()
    {
        std::atomic<int> refused = 0, started = 0;
        std::vector<std::thread> workers;
        ui_gate_hold();
        for (int w = 0; w < 6; w++) {
            workers.emplace_back([&] {
                started++;
                if (!ui_call([] { qFatal("ran behind a closed gate"); }))
                    refused++;
            });
        }
        QTRY_COMPARE(started.load(), 6);
        ui_gate_close();
        for (std::thread &worker : workers)
            worker.join();
        QCOMPARE(refused.load(), 6);
        QVERIFY(!ui_call([] {}));
        ui_post([] { qFatal("ran behind a closed gate"); });
        QCoreApplication::processEvents();
    }

    void closing_from_inside_a_call_lets_that_call_finish()
    {
        std::atomic<int> answer = -1;
        std::thread worker([&] { answer = ui_call([] { ui_gate_close(); }); });
        QTRY_COMPARE(answer.load(), 1);
        worker.join();
        QVERIFY(!ui_gate_is_open());
    }

    void an_opened_gate_works_again_after_closing()
    {
        ui_gate_close();
        ui_gate_open();
        bool ran = false;
        ui_post([&] { ran = true; });
        QTRY_VERIFY(ran);
    }

    void holding_is_counted_and_keeps_everything_waiting()
    {
        bool ran = false;
        ui_gate_hold();
        ui_gate_hold();
        ui_post([&] { ran = true; });
        ui_gate_drain();
        ui_gate_release();
        ui_gate_drain();
        QVERIFY(!ran);
        ui_gate_release();
        QTRY_VERIFY(ran);
    }

    void a_release_too_many_does_no_harm()
    {
        ui_gate_release();
        bool ran = false;
        ui_gate_hold();
        ui_post([&] { ran = true; });
        ui_gate_drain();
        QVERIFY(!ran);
        ui_gate_release();
        QTRY_VERIFY(ran);
    }

    void draining_runs_what_waits_and_what_comes_meanwhile()
    {
        int ran = 0;
        ui_post([&] {
            ran++;
            ui_post([&] { ran++; });
        });
        ui_gate_drain();
        QCOMPARE(ran, 2);
    }

    void nothing_else_runs_inside_a_nested_loop_of_a_function()
    {
        std::vector<int> order;
        ui_post([&] {
            order.push_back(1);
            QCoreApplication::processEvents();
            ui_gate_drain();
            order.push_back(2);
        });
        ui_post([&] { order.push_back(3); });
        QTRY_COMPARE(order, (std::vector<int>{1, 2, 3}));
    }

    void a_hold_taken_inside_a_function_stops_the_next_one()
    {
        bool second = false;
        ui_post([] { ui_gate_hold(); });
        ui_post([&] { second = true; });
        ui_gate_drain();
        QVERIFY(!second);
        ui_gate_release();
        QTRY_VERIFY(second);
    }

    void a_worker_without_pause_does_not_starve_the_timers()
    {
        std::atomic<bool> end = false;
        std::thread worker([&] {
            while (!end && ui_call([] {})) {
            }
        });
        bool fired = false;
        QTimer::singleShot(1, this, [&] { fired = true; });
        QTRY_VERIFY(fired);
        end = true;
        ui_gate_close();
        worker.join();
    }
};

QTEST_MAIN(GateTest)
#include "gate_qtest.moc"

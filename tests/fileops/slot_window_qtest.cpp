// How slots are shown: when it is their turn, and what stands where.
#include "fileops/slot.h"
#include "fileops/slot_window.h"

#include <QApplication>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QTest>

using namespace tav;

class SlotWindowTest : public QObject {
    Q_OBJECT

    SlotWidgets slot_{};
    QLabel *label(void *widget) const { return static_cast<QLabel *>(widget); }
    static QWidget *pane(const SlotWidgets &slot) { return static_cast<QWidget *>(slot.slot); }
    QScrollArea *holder() const { return pane(slot_)->window()->findChild<QScrollArea *>(); }
    // Where the path of a line begins, from the line's left.
    int path_begin(void *line, const QString &word) const
    {
        const QLabel *of = label(line);
        return of->indent() + of->fontMetrics().horizontalAdvance(word);
    }

private Q_SLOTS:
    void init() { QVERIFY(slot_add(slot_)); }
    void cleanup() { QCOMPARE(slot_remove(slot_.slot), 0); }

    void a_slot_that_is_not_there_cannot_be_removed()
    {
        int nothing;
        QCOMPARE(slot_remove(&nothing), -1);
        QCOMPARE(slot_count(), 1);
    }

    void the_newest_is_on_top_and_all_are_of_one_height()
    {
        const QWidget *first = pane(slot_);
        const int height = first->height();
        SlotWidgets second{}, third{};
        QVERIFY(slot_add(second) && slot_add(third));
        QTRY_VERIFY(pane(third)->y() == 0 && pane(second)->y() == height);
        QCOMPARE(first->y(), 2 * height);
        QCOMPARE(holder()->height(), 3 * height);
        slot_remove(second.slot);
        QTRY_COMPARE(first->y(), height);
        slot_remove(third.slot);
        QTRY_COMPARE(first->y(), 0);
        QCOMPARE(holder()->height(), height);
    }

    void many_slots_scroll_by_whole_slots()
    {
        const int width = holder()->width();
        SlotWidgets others[SLOT_MAX - 1];
        for (SlotWidgets &other : others)
            QVERIFY(slot_add(other));
        const int height = pane(slot_)->height();
        QTRY_VERIFY(holder()->verticalScrollBar()->maximum() > 0);
        QCOMPARE(holder()->verticalScrollBar()->singleStep(), height);
        QCOMPARE(holder()->height() % height, 0);
        QVERIFY(holder()->height() <=
                holder()->screen()->availableGeometry().height() - SLOT_SCREEN_REST);
        QCOMPARE(holder()->width(), width + SLOT_SCROLL_BAR);
        for (const SlotWidgets &other : others)
            slot_remove(other.slot);
    }

    void a_window_that_grows_stays_on_the_screen()
    {
        QWidget *window = holder()->window();
        const QRect screen = window->screen()->availableGeometry();
        window->move(screen.right() - 100, screen.bottom() - window->height());
        SlotWidgets second{};
        QVERIFY(slot_add(second));
        QVERIFY(screen.contains(window->frameGeometry()));
        slot_remove(second.slot);
    }

    void a_pause_that_is_down_stands_out()
    {
        auto *pause = pane(slot_)->findChild<QPushButton *>(QStringLiteral("slot_pause"));
        const QColor up = pause->palette().color(QPalette::Button);
        pause->setChecked(true);
        QCOMPARE(pause->palette().color(QPalette::Button),
                 QApplication::palette().color(QPalette::Highlight));
        pause->setChecked(false);
        QCOMPARE(pause->palette().color(QPalette::Button), up);
    }

    void the_first_look_is_shown_and_the_next_waits_for_its_turn()
    {
        FileOp job;
        SlotShown shown;
        job.progress.changes = 1;
        job.progress.percent = 10;
        QVERIFY(slot_take_progress(job, shown));
        QVERIFY(!slot_take_progress(job, shown)); // nothing has changed
        job.progress.changes = 2;
        job.progress.percent = 20;
        shown.since_redraw.start();               // just now, however busy the machine is
        QVERIFY(!slot_take_progress(job, shown)); // shown less than half a second ago
        QCOMPARE(shown.percent, 10);
        bool taken = false;
        QTRY_VERIFY((taken = taken || slot_take_progress(job, shown)));
        QCOMPARE(shown.percent, 20);
    }

    void what_is_to_be_seen_at_once_does_not_wait()
    {
        FileOp job;
        SlotShown shown;
        job.progress.changes = 1;
        QVERIFY(slot_take_progress(job, shown));
        job.progress.changes = 2;
        job.progress.at_once = true;
        QVERIFY(slot_take_progress(job, shown));
        job.progress.asking = true; // a question stands: the slot says so
        QVERIFY(slot_take_progress(job, shown));
    }

    void the_widgets_say_what_the_job_says()
    {
        SlotShown shown;
        shown.title = "Copying";
        shown.from = "From: /a/b";
        shown.to = "  To: /c/b";
        shown.percent = 40;
        shown.seconds = 70;
        shown.n_done = 2;
        shown.n_items = 3;
        shown.asking = true;
        slot_show(slot_, shown);
        QCOMPARE(label(slot_.slot_header_text)->text(), QStringLiteral("Copying"));
        QCOMPARE(label(slot_.slot_from_text)->text(), QStringLiteral("From: /a/b"));
        QCOMPARE(label(slot_.slot_to_text)->text(), QStringLiteral("  To: /c/b"));
        QCOMPARE(label(slot_.slot_time_text)->text(), QStringLiteral("1:10 minutes"));
        QCOMPARE(label(slot_.slot_n_text)->text(), QStringLiteral("3 of 3"));
        QCOMPARE(static_cast<QProgressBar *>(slot_.slot_progress_bar)->value(), 40);
        QVERIFY(pane(slot_)->findChild<QPushButton *>(QStringLiteral("slot_answer"))->isVisible());
    }

    void both_paths_begin_below_each_other()
    {
        SlotShown shown;
        shown.from = "From: /a/b";
        shown.to = "  To: /c/b";
        slot_show(slot_, shown);
        QCOMPARE(path_begin(slot_.slot_from_text, QStringLiteral("From: ")),
                 path_begin(slot_.slot_to_text, QStringLiteral("  To: ")));
        shown.from = "Done";
        shown.to = "";
        slot_show(slot_, shown);
        QCOMPARE(label(slot_.slot_from_text)->indent(), 0);
    }

    void a_path_too_long_is_cut_and_shown_whole_beside_the_pointer()
    {
        SlotShown shown;
        const QString name(300, QLatin1Char('W'));
        shown.from = "From: /a/" + name.toStdString();
        slot_show(slot_, shown);
        const QLabel *from = label(slot_.slot_from_text);
        QVERIFY(from->fontMetrics().horizontalAdvance(from->text()) <= from->width());
        QVERIFY(from->toolTip().contains(name));
    }
};

QTEST_MAIN(SlotWindowTest)
#include "slot_window_qtest.moc"

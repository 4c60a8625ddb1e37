// How slots are shown: when it is their turn, and what stands where.
#include "fileops/slot.h"
#include "fileops/slot_window.h"

#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTest>

using namespace tav;

class SlotWindowTest : public QObject {
    Q_OBJECT

    SlotWidgets slot_{};
    QLabel *label(void *widget) const { return static_cast<QLabel *>(widget); }
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
        QVERIFY(static_cast<QWidget *>(slot_.slot)
                    ->findChild<QPushButton *>(QStringLiteral("slot_answer"))
                    ->isVisible());
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

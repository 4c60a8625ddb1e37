// The progress window and its questions, with real jobs.
#include "app/config.h"
#include "fileops/fop_sys.h"
#include "fileops/slot.h"
#include "fileops/slot_ask.h"
#include "fileops/slot_wait.h"
#include "platform/ui_gate.h"
#include "platform/worker.h"
#include "support/boxes.h"

#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace tav;
using namespace tav::test;

namespace {

int sExits = 0;
int sRefreshes = 0;
std::atomic<bool> sHold{false}; // jobs stand in front of their first directory

QWidget *window()
{
    for (QWidget *top : QApplication::topLevelWidgets()) {
        if (top->objectName() == QLatin1String("slots_holder_window") && !top->isHidden())
            return top;
    }
    return nullptr;
}

QList<QFrame *> panes()
{
    QList<QFrame *> found;
    if (!window())
        return found;
    for (QFrame *frame : window()->findChildren<QFrame *>(QStringLiteral("slot"))) {
        if (!frame->isHidden())
            found << frame;
    }
    std::sort(found.begin(), found.end(),
              [](const QFrame *a, const QFrame *b) { return a->y() < b->y(); });
    return found;
}

template <typename T>
T *part(QFrame *pane, const char *name)
{
    return pane->findChild<T *>(QString::fromLatin1(name));
}

QString text(QFrame *pane, const char *name) { return part<QLabel>(pane, name)->text(); }

} // namespace

class SlotTest : public QObject {
    Q_OBJECT

    QTemporaryDir dir_;
    std::string path(const char *name) const
    {
        return (dir_.path() + QLatin1Char('/')).toStdString() + name;
    }
    void file(const char *name, const char *content) const
    {
        QFile out(QString::fromStdString(path(name)));
        QVERIFY(out.open(QIODevice::WriteOnly));
        out.write(content);
    }
    QByteArray read(const char *name) const
    {
        QFile in(QString::fromStdString(path(name)));
        return in.open(QIODevice::ReadOnly) ? in.readAll() : QByteArray("(none)");
    }
    int start(int op, const char *name, const char *dest = "dst")
    {
        const std::string source = path("src"), to = op == FOP_DELETE ? "" : path(dest);
        return fop_start_cmd(op, source.c_str(), 1, &name, to.c_str());
    }
    // What f writes on standard error.
    QByteArray said_on_stderr(const std::function<void()> &f) const
    {
        const int before = ::dup(STDERR_FILENO);
        const int out = ::open(path("stderr").c_str(), O_CREAT | O_TRUNC | O_WRONLY, 0600);
        ::dup2(out, STDERR_FILENO);
        f();
        const int error = errno;
        ::dup2(before, STDERR_FILENO);
        ::close(before);
        ::close(out);
        errno = error;
        return read("stderr");
    }
    void wait_all_gone() { QTRY_VERIFY_WITH_TIMEOUT(slot_count() == 0 && !window(), 20000); }

private Q_SLOTS:
    void initTestCase()
    {
        ui_gate_open();
        gSlotHooks = {[] { sExits++; }, [] { sRefreshes++; }};
        gFopSys.delay = [](unsigned) { gFopSysReal.delay(10); };
        gFopSys.openat = [](int at, const char *name, int flags, mode_t mode) {
            while (sHold)
                gFopSysReal.delay(5);
            return gFopSysReal.openat(at, name, flags, mode);
        };
    }
    void init()
    {
        QVERIFY(::mkdir(path("src").c_str(), 0755) == 0 || errno == EEXIST);
        QVERIFY(::mkdir(path("dst").c_str(), 0755) == 0 || errno == EEXIST);
        for (const char *name : {"src/a", "src/b"})
            file(name, "new");
        for (const char *name : {"dst/a", "dst/b", "dst/c"})
            ::unlink(path(name).c_str());
        sExits = sRefreshes = 0;
        sHold = false;
        base_window_closed = 0;
    }
    void cleanup()
    {
        sHold = false;
        slot_terminate_all();
        wait_all_gone();
        base_window_closed = 0;
    }

    void a_job_has_a_slot_while_it_runs()
    {
        sHold = true;
        QCOMPARE(start(FOP_COPY, "a"), 0);
        QVERIFY(window());
        QCOMPARE(window()->windowTitle(), QStringLiteral("TAV: File Operations"));
        QCOMPARE(panes().size(), 1);
        QTRY_COMPARE(text(panes()[0], "slot_header_text"), QStringLiteral("Scanning"));
        QTRY_COMPARE(text(panes()[0], "slot_n_text"), QStringLiteral("1 of 1"));
        sHold = false;
        wait_all_gone();
        QCOMPARE(read("dst/a"), QByteArray("new"));
        QCOMPARE(sRefreshes, 1);
        QCOMPARE(sExits, 0);
    }

    void the_51st_is_not_started()
    {
        sHold = true;
        for (int i = 0; i < SLOT_MAX; i++)
            QCOMPARE(start(FOP_COPY, "a"), 0);
        errno = 0;
        QCOMPARE(said_on_stderr([&] { QCOMPARE(start(FOP_COPY, "b"), -1); }),
                 QByteArray("failed to start operation!\n: Cannot allocate memory\n"));
        QCOMPARE(errno, ENOMEM);
        QCOMPARE(slot_count(), SLOT_MAX);
        QCOMPARE(boxes_standing().size(), 1);
        QCOMPARE(boxes_text(boxes_standing()[0]),
                 QStringLiteral("failed to start operation!\n50 operations are running already."));
        boxes_standing()[0]->close();
        for (QFrame *pane : panes())
            part<QPushButton>(pane, "slot_pause")->setChecked(false);
    }

    void what_waits_for_a_slot_starts_when_one_is_free()
    {
        sHold = true;
        for (int i = 0; i < SLOT_MAX; i++) { // each to a place of its own, so that none asks
            const std::string to = "dst" + std::to_string(i);
            ::mkdir(path(to.c_str()).c_str(), 0755);
            QCOMPARE(start(FOP_COPY, "a", to.c_str()), 0);
        }
        for (const char *name : {"a", "b"})
            slot_wait([this, name] { start(FOP_COPY, name); });
        QCOMPARE(slot_waiting(), 2);
        QCOMPARE(boxes_standing().size(), 1); // one for all that wait
        QCOMPARE(boxes_text(boxes_standing()[0]),
                 QStringLiteral("50 operations run at a time.\nThe others start as these end."));
        QPointer<QWidget> box = boxes_standing()[0];
        sHold = false;
        QTRY_COMPARE_WITH_TIMEOUT(slot_waiting(), 0, 20000);
        QTRY_VERIFY(!box); // nothing waits, nothing is to be told
        wait_all_gone();
        QCOMPARE(read("dst/a"), QByteArray("new"));
        QCOMPARE(read("dst/b"), QByteArray("new"));
    }

    void what_waits_is_given_up_by_abort_or_at_the_end()
    {
        sHold = true;
        for (int i = 0; i < SLOT_MAX; i++)
            QCOMPARE(start(FOP_COPY, "a"), 0);
        slot_wait([this] { start(FOP_COPY, "b"); });
        boxes_button(boxes_standing()[0], QStringLiteral("&Abort"))->click();
        QCOMPARE(slot_waiting(), 0);
        slot_wait([this] { start(FOP_COPY, "b"); });
        boxes_button(boxes_standing()[0], QStringLiteral("&Continue"))->click();
        QCOMPARE(slot_waiting(), 1);
        slot_terminate_all();
        QCOMPARE(slot_waiting(), 0);
        sHold = false;
        wait_all_gone();
        QCOMPARE(read("dst/b"), QByteArray("(none)"));
    }

    void a_job_that_cannot_start_leaves_no_slot()
    {
        const char *name = "a";
        QCOMPARE(fop_start_cmd(FOP_COPY, path("src").c_str(), 0, &name, path("dst").c_str()), -1);
        QCOMPARE(errno, EINVAL);
        QCOMPARE(slot_count(), 0);
        QCOMPARE(boxes_standing().size(), 1);
        QVERIFY(boxes_text(boxes_standing()[0])
                    .startsWith(QLatin1String("failed to start operation!\n")));
        boxes_standing()[0]->close();
    }

    void a_job_without_a_thread_leaves_no_slot()
    {
        gWorkerCreate = [](pthread_t *, const pthread_attr_t *, void *(*)(void *),
                           void *) noexcept { return EAGAIN; };
        QCOMPARE(start(FOP_MOVE, "a"), -1);
        QCOMPARE(errno, EAGAIN);
        gWorkerCreate = pthread_create;
        QCOMPARE(slot_count(), 0);
        QVERIFY(!window());
        QCOMPARE(boxes_text(boxes_standing()[0]),
                 QStringLiteral("failed to start operation!\nResource temporarily unavailable"));
        boxes_standing()[0]->close();
        QCOMPARE(read("src/a"), QByteArray("new"));
    }

    void pause_stops_and_resumes()
    {
        sHold = true;
        QCOMPARE(start(FOP_COPY, "a"), 0);
        QTest::mouseClick(part<QPushButton>(panes()[0], "slot_pause"), Qt::LeftButton);
        sHold = false;
        int paused = -1;
        QVERIFY(slot_with_job(panes()[0], [&](FileOp &job) { paused = job.pause; }));
        QCOMPARE(paused, 1);
        QCOMPARE(read("dst/a"), QByteArray("(none)"));
        QTest::mouseClick(part<QPushButton>(panes()[0], "slot_pause"), Qt::LeftButton);
        wait_all_gone();
        QCOMPARE(read("dst/a"), QByteArray("new"));
    }

    void cancel_asks_and_no_changes_nothing_data()
    {
        QTest::addColumn<bool>("paused");
        QTest::newRow("a paused job stays paused") << true;
        QTest::newRow("a running job stays running") << false;
    }
    void cancel_asks_and_no_changes_nothing()
    {
        QFETCH(bool, paused);
        sHold = true;
        QCOMPARE(start(FOP_COPY, "a"), 0);
        QFrame *pane = panes()[0];
        part<QPushButton>(pane, "slot_pause")->setChecked(paused);
        QTest::mouseClick(part<QPushButton>(pane, "cancel_button"), Qt::LeftButton);
        QCOMPARE(boxes_standing().size(), 1);
        QMessageBox *box = boxes_standing()[0];
        QCOMPARE(box->windowTitle(), QStringLiteral("File Operation"));
        QCOMPARE(boxes_text(box), QStringLiteral("Do you want to terminate this operation ? "));
        int state = -1;
        slot_with_job(pane, [&](FileOp &job) { state = job.pause; });
        QCOMPARE(state, 1);
        QTest::mouseClick(part<QPushButton>(pane, "slot_pause"), Qt::LeftButton);
        QTest::mouseClick(part<QPushButton>(pane, "cancel_button"), Qt::LeftButton);
        slot_with_job(pane, [&](FileOp &job) { state = job.pause; });
        QCOMPARE(state, 1); // the question alone decides
        QCOMPARE(boxes_standing().size(), 1);
        QTest::mouseClick(boxes_button(box, QStringLiteral("&No")), Qt::LeftButton);
        QCOMPARE(part<QPushButton>(pane, "slot_pause")->isChecked(), paused);
        slot_with_job(pane, [&](FileOp &job) {
            state = job.pause;
            QCOMPARE(job.abort.load(), 0);
        });
        QCOMPARE(state, paused ? 1 : 0);
        part<QPushButton>(pane, "slot_pause")->setChecked(false);
    }

    void cancel_and_yes_abort()
    {
        sHold = true;
        QCOMPARE(start(FOP_COPY, "a"), 0);
        QTest::mouseClick(part<QPushButton>(panes()[0], "cancel_button"), Qt::LeftButton);
        QTest::keyClick(boxes_standing()[0], Qt::Key_Return); // "&Yes" is the default
        sHold = false;
        wait_all_gone();
        QCOMPARE(read("dst/a"), QByteArray("(none)"));
    }

    void closing_the_cancel_question_answers_no()
    {
        sHold = true;
        QCOMPARE(start(FOP_COPY, "a"), 0);
        QTest::mouseClick(part<QPushButton>(panes()[0], "cancel_button"), Qt::LeftButton);
        QTest::keyClick(boxes_standing()[0], Qt::Key_Escape);
        sHold = false;
        wait_all_gone();
        QCOMPARE(read("dst/a"), QByteArray("new"));
    }

    void questions_stand_side_by_side_and_are_answered_in_any_order()
    {
        file("dst/a", "old");
        file("dst/b", "old");
        QCOMPARE(start(FOP_COPY, "a"), 0);
        QTRY_COMPARE(boxes_standing().size(), 1);
        QCOMPARE(start(FOP_COPY, "b"), 0);
        QTRY_COMPARE(boxes_standing().size(), 2);
        QTRY_VERIFY(part<QPushButton>(panes()[0], "slot_answer")->isVisible());
        QTRY_VERIFY(part<QPushButton>(panes()[1], "slot_answer")->isVisible());
        QMessageBox *first = nullptr, *second = nullptr;
        for (QMessageBox *box : boxes_standing())
            (boxes_text(box).contains(QLatin1String("/a'")) ? first : second) = box;
        QVERIFY(first && second);
        QTest::mouseClick(boxes_button(first, QStringLiteral("&Overwrite")), Qt::LeftButton);
        QTRY_COMPARE(read("dst/a"), QByteArray("new"));
        QCOMPARE(read("dst/b"), QByteArray("old"));
        QTest::mouseClick(boxes_button(second, QStringLiteral("&Skip")), Qt::LeftButton);
        wait_all_gone();
        QCOMPARE(read("dst/b"), QByteArray("old"));
    }

    void a_question_freezes_nobody()
    {
        file("dst/a", "old");
        QCOMPARE(start(FOP_COPY, "a"), 0);
        QTRY_COMPARE(boxes_standing().size(), 1);
        QCOMPARE(start(FOP_COPY, "b"), 0);
        QTRY_COMPARE(read("dst/b"), QByteArray("new"));
        QTRY_COMPARE(slot_count(), 1);
        QCOMPARE(boxes_standing().size(), 1);
    }

    void cancelling_a_job_that_asks_ends_it()
    {
        file("dst/a", "old");
        QCOMPARE(start(FOP_COPY, "a"), 0);
        QTRY_COMPARE(boxes_standing().size(), 1);
        QTest::mouseClick(part<QPushButton>(panes()[0], "cancel_button"), Qt::LeftButton);
        QCOMPARE(boxes_standing().size(), 2);
        for (QMessageBox *box : boxes_standing()) {
            if (box->windowTitle() == QLatin1String("File Operation"))
                QTest::mouseClick(boxes_button(box, QStringLiteral("&Yes")), Qt::LeftButton);
        }
        wait_all_gone();
        QCOMPARE(boxes_standing().size(), 0);
        QCOMPARE(read("dst/a"), QByteArray("old"));
    }

    void closing_the_window_minimises_it()
    {
        sHold = true;
        QCOMPARE(start(FOP_COPY, "a"), 0);
        window()->close();
        QVERIFY(window());
        QVERIFY(window()->isMinimized());
        QCOMPARE(slot_count(), 1);
    }

    void the_program_ends_at_once_without_jobs()
    {
        slot_finish_all();
        QCOMPARE(sExits, 1);
        slot_terminate_all();
        QCOMPARE(sExits, 2);
    }

    void after_the_main_window_the_jobs_finish_and_the_program_ends()
    {
        sHold = true;
        QCOMPARE(start(FOP_COPY, "a"), 0);
        slot_finish_all();
        QCOMPARE(sExits, 0);
        QVERIFY(window());
        sHold = false;
        wait_all_gone();
        QCOMPARE(read("dst/a"), QByteArray("new"));
        QCOMPARE(sExits, 1);
    }

    void terminating_aborts_jobs_and_closes_their_questions()
    {
        file("dst/a", "old");
        QCOMPARE(start(FOP_COPY, "a"), 0);
        QTRY_COMPARE(boxes_standing().size(), 1);
        slot_terminate_all();
        QCOMPARE(boxes_standing().size(), 0);
        wait_all_gone();
        QCOMPARE(read("dst/a"), QByteArray("old"));
        QCOMPARE(sExits, 1);
    }

    void moved_items_are_told_to_the_cut_marks_together()
    {
        static QList<QByteArray> sUncut;
        static bool sFetched;
        sUncut.clear();
        sFetched = false;
        gFopHooks.get_cut_files = [] { sFetched = true; };
        gFopHooks.uncut = [](const char *directory, const char *name) {
            sUncut << QByteArray(directory) + '/' + name;
            return 1;
        };
        QCOMPARE(start(FOP_MOVE, "a"), 0);
        wait_all_gone();
        QVERIFY(sFetched);
        QTRY_COMPARE(sUncut, QList<QByteArray>{QByteArray::fromStdString(path("src/a"))});
        QCOMPARE(start(FOP_COPY, "b"), 0);
        wait_all_gone();
        QCOMPARE(sUncut.size(), 1);
        gFopHooks = {};
    }

    void a_long_name_gets_a_shorter_one_in_the_shown_directory()
    {
        gFopSys.fstatat = [](int at, const char *name, struct stat *status, int flags) {
            if (strcmp(name, "c-long") == 0 && flags == 0) {
                errno = ENAMETOOLONG;
                return -1;
            }
            return gFopSysReal.fstatat(at, name, status, flags);
        };
        file("src/c-long", "content");
        QVERIFY(::mkdir(path("shown").c_str(), 0755) == 0);
        QVERIFY(::chdir(path("shown").c_str()) == 0);
        QCOMPARE(start(FOP_COPY, "c-long"), 0);
        QWidget *dialog = nullptr;
        QTRY_VERIFY([&] {
            for (QWidget *top : QApplication::topLevelWidgets()) {
                if (top->objectName() == QLatin1String("long_filename_dlg") && top->isVisible())
                    dialog = top;
            }
            return dialog != nullptr;
        }());
        auto *oldname = dialog->findChild<QLineEdit *>(QStringLiteral("long_filename_oldname"));
        auto *newname = dialog->findChild<QLineEdit *>(QStringLiteral("long_filename_newname"));
        QCOMPARE(oldname->text(), QStringLiteral("c-long"));
        QCOMPARE(newname->text(), QStringLiteral("c-long"));
        newname->clear();
        QTest::keyClicks(newname, QString(60, QLatin1Char('n')));
        QCOMPARE(newname->text().size(), 47);
        QTest::keyClick(newname, Qt::Key_Return);
        wait_all_gone();
        QVERIFY(::chdir("/") == 0);
        QCOMPARE(read(("shown/" + std::string(47, 'n')).c_str()), QByteArray("content"));
        gFopSys.fstatat = gFopSysReal.fstatat;
    }
};

QTEST_MAIN(SlotTest)
#include "slot_qtest.moc"

// Message boxes and the blocking of windows.
#include "platform/w.h"
#include "support/boxes.h"

#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QPushButton>
#include <QSignalSpy>
#include <QSplitter>
#include <QTest>
#include <QTimer>
#include <QVBoxLayout>

using namespace tav;
using namespace tav::test;

namespace {

// A window with a field and a button that count what reaches them.
class Window : public QWidget {
public:
    Window()
    {
        auto *layout = new QVBoxLayout(this);
        layout->addWidget(edit = new QLineEdit);
        layout->addWidget(button = new QPushButton(QStringLiteral("press")));
        connect(button, &QPushButton::clicked, this, [this] { clicks++; });
        action.setShortcut(QKeySequence(QStringLiteral("Ctrl+K")));
        connect(&action, &QAction::triggered, this, [this] { clicks++; });
        addAction(&action);
        setAcceptDrops(true);
    }
    QLineEdit *edit;
    QPushButton *button;
    QAction action;
    int clicks = 0;
    int wheels = 0;

protected:
    void wheelEvent(QWheelEvent *) override { wheels++; }
    void dragEnterEvent(QDragEnterEvent *event) override { event->accept(); }
};

WQuestion x_question(const char *text)
{
    return {QStringLiteral("Copy/Move"),
            QString::fromUtf8(text),
            {QStringLiteral("&Yes"), QStringLiteral("&No"), QStringLiteral("&Abort")},
            1,
            3};
}

} // namespace

class BoxesTest : public QObject {
    Q_OBJECT

    std::unique_ptr<Window> window_;

private Q_SLOTS:
    void init()
    {
        window_ = std::make_unique<Window>();
        window_->show();
        QVERIFY(QTest::qWaitForWindowActive(window_.get()));
        window_->edit->setFocus();
    }
    void cleanup()
    {
        window_.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(boxes_standing().isEmpty());
    }

    // Blocking.

    void a_blocked_window_takes_no_keys_and_no_clicks()
    {
        wblock(window_.get(), 1);
        QTest::keyClicks(window_->edit, QStringLiteral("abc"));
        QTest::mouseClick(window_->button, Qt::LeftButton);
        QTest::keyClick(window_->edit, Qt::Key_K, Qt::ControlModifier);
        QCOMPARE(window_->edit->text(), QString());
        QCOMPARE(window_->clicks, 0);
        wblock(window_.get(), 0);
        QTest::keyClicks(window_->edit, QStringLiteral("abc"));
        QTest::mouseClick(window_->button, Qt::LeftButton);
        QTest::keyClick(window_->edit, Qt::Key_K, Qt::ControlModifier);
        QCOMPARE(window_->edit->text(), QStringLiteral("abc"));
        QCOMPARE(window_->clicks, 2);
    }

    void blocking_keeps_the_focus_and_disables_nothing()
    {
        wblock(window_.get(), 1);
        QVERIFY(window_->isEnabled() && window_->edit->isEnabled());
        QVERIFY(window_->edit->hasFocus());
        wblock(window_.get(), 0);
        QVERIFY(window_->edit->hasFocus());
    }

    void a_blocked_window_takes_no_wheel_no_drop_and_is_not_closed()
    {
        wblock(window_.get(), 1);
        QWheelEvent wheel({2, 2}, {2, 2}, {}, {0, 120}, {}, {}, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(window_.get(), &wheel);
        QCOMPARE(window_->wheels, 0);
        QMimeData data;
        QDragEnterEvent enter(QPoint(2, 2), Qt::CopyAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(window_.get(), &enter);
        QVERIFY(!enter.isAccepted());
        QTest::keyClick(window_->windowHandle(), Qt::Key_A);
        QCOMPARE(window_->edit->text(), QString());
        wblock(window_.get(), 0);
        QCoreApplication::sendEvent(window_.get(), &wheel);
        QCOMPARE(window_->wheels, 1);
    }

    void who_blocks_twice_unblocks_twice()
    {
        wblock(window_.get(), 1);
        wblock(window_.get(), 1);
        wblock(window_.get(), 0);
        QVERIFY(wblock_is_blocked(window_.get()));
        QTest::mouseClick(window_->button, Qt::LeftButton);
        QCOMPARE(window_->clicks, 0);
        wblock(window_.get(), 7);
        QVERIFY(!wblock_is_blocked(window_.get()));
        wblock(window_.get(), 0);
        QVERIFY(!wblock_is_blocked(window_.get()));
    }

    void a_short_block_leaves_the_pointer_alone()
    {
        wblock(window_.get(), 1);
        QCoreApplication::processEvents();
        QCOMPARE(window_->cursor().shape(), Qt::ArrowCursor);
        wblock(window_.get(), 0);
    }

    void a_blocked_window_says_so_with_its_pointer()
    {
        QCOMPARE(window_->edit->cursor().shape(), Qt::IBeamCursor);
        wblock(window_.get(), 1);
        QTRY_COMPARE(window_->cursor().shape(), Qt::WaitCursor);
        QCOMPARE(window_->edit->cursor().shape(), Qt::WaitCursor);
        wblock(window_.get(), 0);
        QCOMPARE(window_->cursor().shape(), Qt::ArrowCursor);
        QCOMPARE(window_->edit->cursor().shape(), Qt::IBeamCursor);
    }

    void a_dialog_of_a_blocked_window_is_not_blocked()
    {
        QWidget dialog(window_.get(), Qt::Dialog);
        wblock(window_.get(), 1);
        QVERIFY(!wblock_is_blocked(&dialog));
        QVERIFY(wblock_is_blocked(window_->edit));
        wblock(window_.get(), 0);
    }

    void blocking_nothing_is_ignored()
    {
        wblock(nullptr, 1);
        wblock(nullptr, 0);
        QVERIFY(!wblock_is_blocked(nullptr));
    }

    void a_window_that_dies_blocked_leaves_no_block_behind()
    {
        auto other = std::make_unique<Window>();
        wblock(other.get(), 1);
        other.reset();
        QTest::mouseClick(window_->button, Qt::LeftButton);
        QCOMPARE(window_->clicks, 1);
    }

    // Questions that wait.

    void a_question_answers_1_for_yes_and_2_for_no()
    {
        auto seen = boxes_answer_next(QStringLiteral("&Yes"));
        QCOMPARE(wask(window_.get(), "Delete", "Really %s?", "this"), 1);
        QVERIFY(seen->came);
        QCOMPARE(seen->title, QStringLiteral("Delete"));
        QCOMPARE(seen->text, QStringLiteral("Really this?"));
        QCOMPARE(seen->buttons, (QStringList{QStringLiteral("&Yes"), QStringLiteral("&No")}));
        boxes_answer_next(QStringLiteral("&No"));
        QCOMPARE(wask(window_.get(), "Delete", "Really?"), 2);
    }

    void closing_a_question_answers_no()
    {
        boxes_answer_next(QString());
        QCOMPARE(wask(window_.get(), "Delete", "Really?"), 2);
    }

    void return_answers_with_the_default_button()
    {
        QTimer timer;
        connect(&timer, &QTimer::timeout, this, [] {
            if (!boxes_standing().isEmpty())
                QTest::keyClick(boxes_standing().first(), Qt::Key_Return);
        });
        timer.start(5);
        QCOMPARE(wask(window_.get(), "Delete", "Really?"), 1);
    }

    void a_report_has_one_button_and_blocks_its_window()
    {
        auto seen = boxes_answer_next(QStringLiteral("&Continue"));
        bool blocked = false;
        QTimer::singleShot(0, this, [&] { blocked = wblock_is_blocked(window_.get()); });
        wreport(window_.get(), "Error", "File name '%s' already exists", "a");
        QCOMPARE(seen->buttons, QStringList{QStringLiteral("&Continue")});
        QCOMPARE(seen->text, QStringLiteral("File name 'a' already exists"));
        QVERIFY(blocked);
        QVERIFY(!wblock_is_blocked(window_.get()));
    }

    void while_a_report_waits_no_other_window_takes_anything()
    {
        Window other;
        other.show();
        QTimer::singleShot(0, this, [&] {
            QTest::mouseClick(other.button, Qt::LeftButton);
            boxes_answer_next(QStringLiteral("&Continue"));
        });
        wreport(window_.get(), "Error", "text");
        QCOMPARE(other.clicks, 0);
        QTest::mouseClick(other.button, Qt::LeftButton);
        QCOMPARE(other.clicks, 1);
    }

    void a_waiting_question_whose_parent_dies_answers_as_closed()
    {
        auto *parent = new Window;
        parent->show();
        QTimer::singleShot(0, this, [parent] { delete parent; });
        QCOMPARE(wquestion_wait(parent, x_question("gone?")), 3);
    }

    void a_question_without_a_parent_can_be_answered()
    {
        boxes_answer_next(QStringLiteral("&Yes"));
        QCOMPARE(wask(nullptr, "Error", "text"), 1);
    }

    // What is shown.

    void names_are_plain_text_and_visible()
    {
        auto seen = boxes_answer_next(QStringLiteral("&Continue"));
        wreport(window_.get(), "Error", "'%s'\nsecond", "<b>a</b>&x\n\xE2\x80\xAEz\xFF");
        QCOMPARE(seen->text, QStringLiteral("'<b>a</b>&x\u240A\\u202Ez\\xFF'\nsecond"));
    }

    void a_text_made_elsewhere_keeps_its_lines()
    {
        auto seen = boxes_answer_next(QStringLiteral("&Continue"));
        wreport(window_.get(), "Error", "%s", "one\ntwo");
        QCOMPARE(seen->text, QStringLiteral("one\ntwo"));
    }

    void a_text_is_cut_at_255_bytes_and_at_a_character()
    {
        const std::string ascii(400, 'a');
        auto seen = boxes_answer_next(QStringLiteral("&Continue"));
        wreport(window_.get(), "Error", "%s", ascii.c_str());
        QCOMPARE(seen->text, QString(255, QLatin1Char('a')));
        std::string umlauts;
        for (int i = 0; i < 200; i++)
            umlauts += "\xC3\xA4";
        seen = boxes_answer_next(QStringLiteral("&Continue"));
        wreport(window_.get(), "Error", "%s", umlauts.c_str());
        QCOMPARE(seen->text, QString(127, QChar(0xE4)));
    }

    void a_long_name_does_not_make_the_box_wider_than_the_screen()
    {
        QTimer timer;
        int width = 0;
        connect(&timer, &QTimer::timeout, this, [&] {
            if (boxes_standing().isEmpty())
                return;
            width = boxes_standing().first()->width();
            boxes_standing().first()->close();
        });
        timer.start(5);
        wreport(window_.get(), "Error", "Unable to rename '%s'.", std::string(300, 'W').c_str());
        QVERIFY(width > 0 && width <= window_->screen()->availableGeometry().width());
    }

    // Questions that do not wait.

    void several_questions_stand_and_are_answered_in_any_order()
    {
        QList<int> answers{0, 0, 0};
        for (int i = 0; i < 3; i++)
            wquestion(window_.get(), x_question("q"),
                      [&answers, i](int choice) { answers[i] = choice; });
        QCOMPARE(answers, (QList<int>{0, 0, 0}));
        QCOMPARE(boxes_standing().size(), 3);
        const QList<QMessageBox *> boxes = boxes_standing();
        QTest::mouseClick(boxes_button(boxes[1], QStringLiteral("&No")), Qt::LeftButton);
        QVERIFY(wblock_is_blocked(window_.get()));
        QTest::mouseClick(boxes_button(boxes[0], QStringLiteral("&Abort")), Qt::LeftButton);
        QTest::mouseClick(boxes_button(boxes[2], QStringLiteral("&Yes")), Qt::LeftButton);
        QList<int> sorted = answers;
        std::sort(sorted.begin(), sorted.end());
        QCOMPARE(sorted, (QList<int>{1, 2, 3}));
        QVERIFY(!wblock_is_blocked(window_.get()));
    }

    void closing_a_question_gives_its_closing_answer_once()
    {
        int calls = 0, answer = 0;
        wquestion(window_.get(), x_question("q"), [&](int choice) { calls++, answer = choice; });
        boxes_standing().first()->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCOMPARE(calls, 1);
        QCOMPARE(answer, 3);
        wquestion(window_.get(), x_question("q"), [&](int choice) { calls++, answer = choice; });
        QTest::keyClick(boxes_standing().first(), Qt::Key_Escape);
        QCOMPARE(calls, 2);
        QCOMPARE(answer, 3);
    }

    void a_question_dies_with_its_parent_and_answers()
    {
        int answer = 0;
        wquestion(window_.get(), x_question("q"), [&](int choice) { answer = choice; });
        window_.reset();
        QCOMPARE(answer, 3);
    }

    void the_letter_behind_the_mark_answers()
    {
        int answer = 0;
        wquestion(window_.get(), x_question("q"), [&](int choice) { answer = choice; });
        QMessageBox *box = boxes_standing().first();
        QTRY_COMPARE(QApplication::activeWindow(), box);
        QTest::keyClick(box->windowHandle(), Qt::Key_N, Qt::AltModifier);
        QTRY_COMPARE(answer, 2);
    }

    void the_buttons_stand_in_their_order()
    {
        wquestion(window_.get(), x_question("q"), [](int) {});
        const QMessageBox *box = boxes_standing().first();
        QList<int> places;
        for (const char *label : {"&Yes", "&No", "&Abort"})
            places.append(boxes_button(box, QString::fromLatin1(label))->x());
        QVERIFY(places[0] < places[1] && places[1] < places[2]);
        boxes_standing().first()->close();
    }

    void a_worker_question_can_be_answered_while_a_report_waits()
    {
        int answer = 0;
        QTimer::singleShot(0, this, [&] {
            wquestion(window_.get(), x_question("q"), [&](int choice) { answer = choice; });
            for (QMessageBox *box : boxes_standing()) {
                if (QAbstractButton *no = boxes_button(box, QStringLiteral("&No")))
                    QTest::mouseClick(no, Qt::LeftButton);
            }
            boxes_answer_next(QStringLiteral("&Continue"));
        });
        wreport(window_.get(), "Error", "text");
        QCOMPARE(answer, 2);
    }
};

QTEST_MAIN(BoxesTest)
#include "boxes_qtest.moc"

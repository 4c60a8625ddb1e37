// Message boxes as a person meets them: the one that stands is read and answered by its button. A
// box that waits in a loop of its own is answered from a timer: boxes_answer_next arranges that
// before it opens.
#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QTest>
#include <QTimer>
#include <functional>
#include <memory>

namespace tav::test {

inline QList<QMessageBox *> boxes_standing()
{
    QList<QMessageBox *> boxes;
    for (QWidget *window : QApplication::topLevelWidgets()) {
        auto *box = qobject_cast<QMessageBox *>(window);
        if (box && box->isVisible())
            boxes.append(box);
    }
    return boxes;
}

// The text without the places at which its lines may break.
inline QString boxes_text(const QMessageBox *box) { return box->text().remove(QChar(u'\u200B')); }

inline QAbstractButton *boxes_button(const QMessageBox *box, const QString &label)
{
    for (QAbstractButton *button : box->buttons()) {
        if (button->text() == label)
            return button;
    }
    return nullptr;
}

// What a box said, and whether it came.
struct BoxSeen {
    bool came = false;
    QString title;
    QString text;
    QStringList buttons;
};

// Answers the next box that stands by clicking the button with the label ("&Yes"). Without a label
// it is closed by Escape.
inline std::shared_ptr<BoxSeen> boxes_answer_next(const QString &label)
{
    auto seen = std::make_shared<BoxSeen>();
    auto *timer = new QTimer(qApp);
    QObject::connect(timer, &QTimer::timeout, timer, [seen, timer, label] {
        const QList<QMessageBox *> boxes = boxes_standing();
        if (boxes.isEmpty())
            return;
        QMessageBox *box = boxes.first();
        timer->stop();
        timer->deleteLater();
        *seen = {true, box->windowTitle(), boxes_text(box), {}};
        for (const QAbstractButton *button : box->buttons())
            seen->buttons.append(button->text());
        if (label.isEmpty())
            QTest::keyClick(box, Qt::Key_Escape);
        else if (QAbstractButton *button = boxes_button(box, label))
            QTest::mouseClick(button, Qt::LeftButton);
        else
            QTest::qFail("no button of that label", __FILE__, __LINE__);
    });
    timer->start(5);
    return seen;
}

} // namespace tav::test

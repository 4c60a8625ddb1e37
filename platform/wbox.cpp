// Message boxes. A box is no modal window of the toolkit: those can only be answered in the reverse
// order of their opening, and a worker's question must not wait for another worker's. It blocks its
// parent by wblock instead.
#include "platform/w.h"
#include "platform/wblock.h"
#include "platform/wformat.h"

#include <QAbstractButton>
#include <QApplication>
#include <QEventLoop>
#include <QKeyEvent>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <cstdarg>
#include <memory>

namespace tav {
namespace {

constexpr int RUN_LONGEST =
    48;                      // characters that may stand together without a place to break the line
constexpr int RUN_STEP = 12; // a place to break after so many characters of a longer run
const QChar ZERO_WIDTH_SPACE(u'\u200B');

// Gives runs of characters without a blank (names, paths) places at which the line may break.
QString x_breakable(const QString &text)
{
    QString out;
    qsizetype begin = 0;
    for (qsizetype at = 0; at <= text.size(); at++) {
        if (at < text.size() && !text[at].isSpace())
            continue;
        const QString run = text.mid(begin, at - begin);
        for (qsizetype i = 0; i < run.size(); i++) {
            out += run[i];
            if (run.size() > RUN_LONGEST && i % RUN_STEP == RUN_STEP - 1 &&
                !run[i].isHighSurrogate())
                out += ZERO_WIDTH_SPACE;
        }
        if (at < text.size())
            out += text[at];
        begin = at + 1;
    }
    return out;
}

// One box: answers exactly once, whatever ends it.
class Box : public QMessageBox {
public:
    Box(QWidget *parent, const WQuestion &question, std::function<void(int)> answered)
        : QMessageBox(parent), blocked_(parent), before_(QApplication::activeWindow()),
          answered_(std::move(answered)), on_close_(question.on_close)
    {
        setAttribute(Qt::WA_DeleteOnClose);
        setProperty(WBLOCK_MESSAGE_BOX, true);
        setWindowModality(Qt::NonModal);
        setWindowTitle(question.title);
        setIcon(question.buttons.size() > 1 ? QMessageBox::Question : QMessageBox::Warning);
        setTextFormat(Qt::PlainText);
        setText(x_breakable(question.text));
        setAccessibleDescription(question.text);
        for (const QString &label : question.buttons)
            add_button(label);
        const auto count = static_cast<int>(buttons_.size());
        if (question.on_return >= 1 && question.on_return <= count)
            setDefaultButton(buttons_[static_cast<size_t>(question.on_return - 1)]);
        wblock(blocked_, 1);
    }
    ~Box() override { answer(on_close_); }
    Box(const Box &) = delete;
    Box &operator=(const Box &) = delete;

    void answer(int choice)
    {
        if (!answered_)
            return;
        const std::function<void(int)> call = std::move(answered_);
        answered_ = nullptr;
        wblock(blocked_, 0);
        call(choice);
    }

protected:
    void closeEvent(QCloseEvent *event) override
    {
        event->accept();
        end(on_close_);
    }

    void keyPressEvent(QKeyEvent *event) override
    {
        if (event->key() == Qt::Key_Escape)
            end(on_close_);
        else
            QMessageBox::keyPressEvent(event);
    }

private:
    void add_button(const QString &label)
    {
        QPushButton *button = addButton(label, QMessageBox::ActionRole);
        buttons_.push_back(button);
        const auto choice = static_cast<int>(buttons_.size());
        connect(button, &QAbstractButton::clicked, this, [this, choice] { end(choice); });
    }

    void end(int choice)
    {
        hide();
        deleteLater();
        const QWidget *active = QApplication::activeWindow();
        QWidget *back = before_ && before_->isVisible() ? before_ : blocked_;
        // Also when it has the keyboard still: the box may have been answered before it got it.
        if (back && (!active || active == this || active == back))
            back->activateWindow();
        answer(choice);
    }

    QPointer<QWidget> blocked_;
    QPointer<QWidget> before_; // had the keyboard: a dialog above the blocked window, for instance
    std::function<void(int)> answered_;
    int on_close_;
    std::vector<QPushButton *> buttons_;
};

QWidget *x_window(QWidget *parent) { return parent ? parent->window() : nullptr; }

int x_ask(QWidget *parent, const char *title, const QStringList &buttons, const QString &text)
{
    const auto count = static_cast<int>(buttons.size());
    const WQuestion question = {QString::fromUtf8(title), text, buttons, 1, count};
    return wquestion_wait(parent, question);
}

} // namespace

QWidget *wquestion(QWidget *parent, const WQuestion &question, std::function<void(int)> answered)
{
    auto *box = new Box(x_window(parent), question, std::move(answered));
    box->show();
    wcenter(box->parentWidget(), box);
    box->raise();
    box->activateWindow();
    return box;
}

int wquestion_wait(QWidget *parent, const WQuestion &question)
{
    QEventLoop loop;
    int chosen = question.on_close;
    bool done = false;
    wquestion(parent, question, [&](int choice) {
        chosen = choice;
        done = true;
        loop.quit();
    });
    wblock_exclusive(true);
    if (!done)
        loop.exec();
    wblock_exclusive(false);
    return chosen;
}

int wask(QWidget *parent, const char *title, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const WFormatted text = wformat(format, arguments);
    va_end(arguments);
    return x_ask(parent, title, {QStringLiteral("&Yes"), QStringLiteral("&No")}, text.text);
}

void wreport(QWidget *parent, const char *title, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const WFormatted text = wformat(format, arguments);
    va_end(arguments);
    x_ask(parent, title, {QStringLiteral("&Continue")}, text.text);
}

} // namespace tav

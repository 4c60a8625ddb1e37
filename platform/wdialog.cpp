// The common part of dialogs: a child object of the dialog ends the block, so that no way of
// closing, not even the dialog's destruction, can leave the window blocked.
#include "platform/wdialog.h"

#include "platform/w.h"

#include <QLineEdit>
#include <QPointer>
#include <QScreen>
#include <QScrollArea>
#include <QStyle>
#include <QVBoxLayout>

namespace tav {
namespace {

class Guard : public QObject {
public:
    Guard(QDialog *dialog, QWidget *over, std::function<void()> closed)
        : QObject(dialog), over_(over), has_over_(over != nullptr), closed_(std::move(closed))
    {
        wblock(over_, 1);
        connect(dialog, &QDialog::finished, this, [this] { end(); });
    }
    ~Guard() override { end(); }
    Guard(const Guard &) = delete;
    Guard &operator=(const Guard &) = delete;

private:
    void end()
    {
        if (ended_)
            return;
        ended_ = true;
        if (has_over_ && !over_)
            return;
        wblock(over_, 0);
        if (over_)
            over_->activateWindow();
        if (closed_)
            closed_();
    }

    QPointer<QWidget> over_;
    bool has_over_;
    bool ended_ = false;
    std::function<void()> closed_;
};

// A dialog larger than the screen (a large font, a small screen) gets a scroll area around its
// contents, so that every control can be reached.
void x_fit(QDialog *dialog)
{
    const QSize margins(40, 60); // for the frame and for the screen to be seen
    const QSize room = dialog->screen()->availableGeometry().size() - margins;
    const QSize wanted = dialog->sizeHint();
    if (!dialog->layout() || (wanted.width() <= room.width() && wanted.height() <= room.height()))
        return;
    auto *contents = new QWidget;
    contents->setLayout(dialog->layout()); // takes the layout and its widgets along
    auto *area = new QScrollArea(dialog);
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setWidget(contents);
    auto *around = new QVBoxLayout(dialog);
    around->setContentsMargins(0, 0, 0, 0);
    around->addWidget(area);
    const int bar = dialog->style()->pixelMetric(QStyle::PM_ScrollBarExtent) + 2;
    dialog->setMinimumSize(0, 0); // what the layout asked for when it was the dialog's own
    dialog->resize((wanted + QSize(bar, bar)).boundedTo(room));
}

} // namespace

void wdialog_open(QDialog *dialog, QWidget *over, std::function<void()> closed)
{
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    new Guard(dialog, over, std::move(closed));
    if (!dialog->testAttribute(Qt::WA_Resized))
        dialog->adjustSize();
    x_fit(dialog);
    wcenter(over, dialog);
    dialog->show();
    dialog->raise();
    dialog->activateWindow();
}

bool wdialog_focus(QDialog *dialog)
{
    if (!dialog || !dialog->isVisible())
        return false;
    dialog->raise();
    dialog->activateWindow();
    return true;
}

void wdialog_done(QDialog *dialog)
{
    if (dialog)
        dialog->accept();
}

void wdialog_read_only(QLineEdit *field, bool on)
{
    field->setReadOnly(on);
    QPalette palette = field->parentWidget()->palette();
    if (on) {
        palette.setBrush(QPalette::Base, palette.brush(QPalette::Window));
        palette.setBrush(QPalette::Text, palette.brush(QPalette::WindowText));
    }
    field->setPalette(palette);
}

} // namespace tav

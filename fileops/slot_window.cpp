// The window of the slots: see slot_window.h.
#include "fileops/slot_window.h"

#include "fileops/fop_update.h"
#include "fileops/slot.h"
#include "fileops/slot_ask.h"
#include "platform/shown.h"
#include "platform/w.h"
#include "ui_slot.h"
#include "ui_slots_holder_window.h"

#include <QApplication>
#include <QCloseEvent>
#include <QPainter>
#include <QScreen>
#include <QScrollBar>
#include <QStyle>

namespace tav {
namespace {

constexpr int SLOT_LINE_CHARACTERS = 62; // of a from or to line; labels and a shortened path fit in

constexpr int LINE_ALPHA = 48; // of the text's colour, in the lines between slots

// Closing it minimises it: the operations go on, and stay within reach.
class SlotsWindow : public QWidget {
public:
    SlotsWindow()
    {
        setAttribute(Qt::WA_QuitOnClose, false);
        setWindowFlag(Qt::Window);
    }

protected:
    void closeEvent(QCloseEvent *event) override
    {
        event->ignore();
        showMinimized();
    }
};

QWidget *sWindow = nullptr;     // slots_holder_window, null without slots
QScrollArea *sHolder = nullptr; // its scrolling part
int sHeight = 0, sWidth = 0;    // of one slot, taken from the first
int sMaxHeight = 0;             // of the holder: a whole number of slots

void x_make_window()
{
    sWindow = new SlotsWindow;
    Ui::slots_holder_window form;
    form.setupUi(sWindow);
    sHolder = form.slots_holder;
    const QScreen *screen = QGuiApplication::primaryScreen();
    sMaxHeight = (screen ? screen->availableGeometry().height() : 600) - SLOT_SCREEN_REST;
    sHeight = 0;
    wtimer_attach(sWindow, SLOT_TIMER_MS, [](QObject *) { slot_timer(); });
}

// One slot; a thin line, to be seen on dark windows too, parts it from the one above.
class SlotPane : public QFrame {
public:
    using QFrame::QFrame;

protected:
    void paintEvent(QPaintEvent *event) override
    {
        QFrame::paintEvent(event);
        if (y() == 0)
            return;
        QColor line = palette().color(QPalette::WindowText);
        line.setAlpha(LINE_ALPHA);
        QPainter(this).fillRect(0, 0, width(), 1, line);
    }
    void moveEvent(QMoveEvent *) override { update(); } // it may be the first now
};

// What stands before the path of a line: "From: ". In pixels.
int x_word_width(const QLabel *label, const std::string &text)
{
    const size_t colon = text.find(": ");
    if (colon == std::string::npos)
        return 0;
    return label->fontMetrics().horizontalAdvance(shown_text(text.substr(0, colon + 2)));
}

// A line of a slot keeps its room whatever it says; what does not fit is cut in the middle. Its
// path begins where that of the other line does, whose word is that wide.
void x_set_line(QLabel *label, const std::string &text, int other_word)
{
    const int word = x_word_width(label, text);
    const int indent = word > 0 ? std::max(other_word - word, 0) : 0;
    const QString full = shown_text(text);
    const QString shown = shown_text(shrink_name(text, FOP_NAME_SHOWN));
    label->setIndent(indent);
    label->setText(
        label->fontMetrics().elidedText(shown, Qt::ElideMiddle, label->width() - indent));
    label->setToolTip(full == label->text() ? QString() : full.toHtmlEscaped());
    label->setAccessibleDescription(full);
}

void x_fill(Ui::slot &form, SlotWidgets &slot, QWidget *pane)
{
    slot = {form.slot_progress_bar, form.slot_header_text, form.slot_time_text, form.slot_from_text,
            form.slot_to_text,      form.slot_n_text,      form.cancel_button,  pane};
}

// A button that is down stands out, on dark windows too.
void x_show_down(QWidget *button, bool down)
{
    QPalette palette;
    if (down) {
        const QPalette usual = QApplication::palette();
        palette.setColor(QPalette::Button, usual.color(QPalette::Highlight));
        palette.setColor(QPalette::ButtonText, usual.color(QPalette::HighlightedText));
    }
    button->setPalette(palette);
}

void x_set_up(Ui::slot &form, QWidget *pane)
{
    QFont bold = form.slot_header_text->font();
    bold.setBold(true);
    form.slot_header_text->setFont(bold);
    const int line = SLOT_LINE_CHARACTERS * pane->fontMetrics().averageCharWidth();
    for (QLabel *label : {form.slot_from_text, form.slot_to_text}) {
        label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
        label->setMinimumWidth(line);
        label->setText(QStringLiteral(" "));
    }
    QSizePolicy policy = form.slot_answer->sizePolicy();
    policy.setRetainSizeWhenHidden(true); // a question must not change the size of its slot
    form.slot_answer->setSizePolicy(policy);
    form.slot_answer->hide();
    QObject::connect(form.slot_pause, &QPushButton::toggled, pane,
                     [button = form.slot_pause](bool down) {
                         slot_pause_cb(button);
                         x_show_down(button, down);
                     });
    QObject::connect(form.cancel_button, &QPushButton::clicked, pane,
                     [button = form.cancel_button] { slot_cancel_cb(button); });
    QObject::connect(form.slot_answer, &QPushButton::clicked, pane,
                     [pane] { slot_ask_show(pane); });
}

// Sizes come from the first slot: how high one is, and how many a screen takes.
void x_measure(QWidget *pane)
{
    pane->ensurePolished();
    pane->layout()->activate();
    const QSize wanted = pane->sizeHint().expandedTo(pane->minimumSizeHint());
    sHeight = wanted.height();
    sWidth = std::min(wanted.width(), SLOT_MAX_WIDTH);
    sMaxHeight = std::max(sMaxHeight / sHeight, 1) * sHeight;
    sHolder->verticalScrollBar()->setSingleStep(sHeight);
}

// A window that has grown past the screen's edge moves back, where windows may move themselves.
void x_keep_on_screen()
{
    const QScreen *screen = sWindow->screen();
    if (!sWindow->isVisible() || !screen)
        return;
    const QRect room = screen->availableGeometry(), frame = sWindow->frameGeometry();
    const int x = std::max(room.left(), std::min(frame.left(), room.right() + 1 - frame.width()));
    const int y = std::max(room.top(), std::min(frame.top(), room.bottom() + 1 - frame.height()));
    if (QPoint(x, y) != frame.topLeft())
        sWindow->move(x, y);
}

} // namespace

bool slot_take_progress(FileOp &job, SlotShown &shown)
{
    FopProgress &progress = job.progress;
    const int64_t n_done = progress.n_done, n_items = progress.n_items;
    const bool asking = progress.asking;
    std::lock_guard hold(progress.lock);
    if (progress.changes == shown.changes && n_done == shown.n_done && n_items == shown.n_items &&
        asking == shown.asking)
        return false;
    const bool recent =
        shown.since_redraw.isValid() && shown.since_redraw.elapsed() < SLOT_REDRAW_MS;
    if (recent && !progress.at_once && asking == shown.asking)
        return false;
    progress.at_once = false;
    shown.title = progress.title;
    shown.from = progress.from;
    shown.to = progress.to;
    shown.percent = progress.percent;
    shown.seconds = progress.seconds;
    shown.changes = progress.changes;
    shown.n_done = n_done;
    shown.n_items = n_items;
    shown.asking = asking;
    shown.since_redraw.start();
    return true;
}

void slot_show(const SlotWidgets &widgets, const SlotShown &shown)
{
    auto label = [](void *widget) { return static_cast<QLabel *>(widget); };
    label(widgets.slot_header_text)->setText(shown_text(shown.title));
    QLabel *from = label(widgets.slot_from_text), *to = label(widgets.slot_to_text);
    x_set_line(from, shown.from, x_word_width(to, shown.to));
    x_set_line(to, shown.to, x_word_width(from, shown.from));
    label(widgets.slot_n_text)
        ->setText(QString::fromStdString(fop_count_text(shown.n_done, shown.n_items)));
    label(widgets.slot_time_text)->setText(QString::fromStdString(fop_time_text(shown.seconds)));
    static_cast<QProgressBar *>(widgets.slot_progress_bar)->setValue(shown.percent);
    auto *pane = static_cast<QWidget *>(widgets.slot);
    pane->findChild<QWidget *>(QStringLiteral("slot_answer"))->setVisible(shown.asking);
}

bool slot_window_add(SlotWidgets &slot)
{
    const bool first = !sWindow;
    if (first)
        x_make_window();
    auto *pane = new SlotPane(sHolder->widget());
    Ui::slot form;
    form.setupUi(pane);
    x_set_up(form, pane);
    x_fill(form, slot, pane);
    auto *list = static_cast<QVBoxLayout *>(sHolder->widget()->layout());
    list->insertWidget(0, pane);
    if (sHeight == 0)
        x_measure(pane);
    pane->setFixedHeight(sHeight);
    pane->show();
    if (first) { // of its size already when it is given a place
        slot_window_resize(1);
        sWindow->show();
    }
    return true;
}

void slot_window_remove(const SlotWidgets &slot)
{
    auto *pane = static_cast<QWidget *>(slot.slot);
    sHolder->widget()->layout()->removeWidget(pane);
    pane->hide();
    pane->deleteLater();
    if (sHolder->widget()->layout()->count() > 1)
        return;
    sWindow->hide();
    wtimer_detach(sWindow);
    sWindow->deleteLater(); // this runs in its timer
    sWindow = nullptr;
    sHolder = nullptr;
}

void slot_window_resize(int count)
{
    if (!sHolder)
        return;
    const int bar =
        std::max(SLOT_SCROLL_BAR, sHolder->style()->pixelMetric(QStyle::PM_ScrollBarExtent));
    const int wanted = count * sHeight;
    const bool scrolls = wanted > sMaxHeight;
    const QSize size(sWidth + (scrolls ? bar : 0), scrolls ? sMaxHeight : wanted);
    sHolder->setMinimumSize(size.width(), std::min(sHeight, size.height()));
    sHolder->setMaximumHeight(size.height());
    const int least = sWindow->isVisible() ? sWindow->width() : 0; // what the user made of it stays
    sWindow->resize(std::max(least, size.width()), size.height());
    x_keep_on_screen();
}

void slot_window_centre(QWidget *box)
{
    // A progress window that has only just been shown has no place of its own yet.
    const QWidget *over = gBase && gBase->isVisible() ? gBase : sWindow;
    if (over && box)
        wcenter(over, box);
}

} // namespace tav

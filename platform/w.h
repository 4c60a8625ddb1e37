// Widget utilities: timers and work procedures bound to a widget, texts, focus, blocking, message
// boxes, centring, search by class. State lives with the widget. Main thread only.
#pragma once

#include <QWidget>
#include <functional>

namespace tav {

// The main window; null before it is made and after it is gone. Set by app/base.cpp.
extern QWidget *gBase;

// The widget (or action) of that name in the main window, null when there is none of the type.
template <typename T = QWidget>
T *w_find(const char *name)
{
    return gBase ? gBase->findChild<T *>(QString::fromLatin1(name)) : nullptr;
}

constexpr int W_CONTINUE = 0; // what callbacks return
constexpr int W_END = 1;

using WTimerFunc = std::function<void(QObject *widget)>;

// Gives the widget a repeating timer, or its timer another function and period. Period in ms, 0
// stops it.
void wtimer_attach(QObject *widget, unsigned period, WTimerFunc callback);
void wtimer_trigger(QObject *widget); // calls the callback at once, the timer goes on as it is
void wtimer_detach(QObject *widget);  // no further call

// Runs work again and again while the program is idle, until it returns W_END or is detached.
void wproc_attach(QObject *widget, std::function<int()> work);
void wproc_finished(QObject *widget); // for work that ends itself
void wproc_detach(QObject *widget);

// Brings the widget's window to the front and the keyboard to the widget.
void wfocus(QWidget *widget);

// Formats at most 255 bytes (cut at a character's boundary) into the title of a window or of a
// group, else into the widget's text. The formatted length, or -1 for a null widget.
[[gnu::format(printf, 2, 3)]] int wprintf(QWidget *widget, const char *format, ...);

// Blocks (1) or unblocks (anything else) a widget's mouse and keys, with a busy pointer meanwhile.
// Counted: who blocks twice unblocks twice. Nothing is disabled, so the focus stays. Null is
// ignored.
void wblock(QWidget *widget, int block);
bool wblock_is_blocked(const QWidget *widget);

// A modal question with "&Yes" (default) and "&No": 1 or 2; closing it answers 2. Plain text, cut
// as above.
[[gnu::format(printf, 3, 4)]] int wask(QWidget *parent, const char *title, const char *format, ...);

// A modal report with "&Continue".
[[gnu::format(printf, 3, 4)]] void wreport(QWidget *parent, const char *title, const char *format,
                                           ...);

// A question with any buttons ("&" before the shortcut letter), defaults counting from 1. Does not
// block: answered runs once with the chosen button, or with on_close when the box is closed;
// several may stand.
struct WQuestion {
    QString title;
    QString text;
    QStringList buttons;
    int on_return = 1;
    int on_close = 1;
};
// Returns the box, which deletes itself when it is closed.
QWidget *wquestion(QWidget *parent, const WQuestion &question, std::function<void(int)> answered);

// The same, waiting in a nested loop. Main thread code that cannot go on without the answer.
int wquestion_wait(QWidget *parent, const WQuestion &question);

// Where a window of size goes so that it lies centred over ref and on the screen.
QPoint wcenter_place(const QRect &ref, const QSize &size, const QRect &screen);
void wcenter(const QWidget *ref, QWidget *widget);

// The first widget of the class (a Qt class name), depth first from the widget itself; null when
// none.
QWidget *wrecursive_find_child_class(QWidget *widget, const char *class_name);

} // namespace tav

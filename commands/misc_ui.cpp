// Launching never waits: its looks at a new child come from a timer, its messages after the event
// that started it (which may still clear the status line).
#include "commands/misc_ui.h"

#include "commands/misc.h"
#include "platform/child_watch.h"
#include "platform/shown.h"
#include "platform/w.h"

#include <QLabel>
#include <QTimer>

namespace tav {

namespace {

void x_status(const std::string &text)
{
    QTimer::singleShot(
        0, [text] { wprintf(w_find("status1"), "%s", shown_text(text).toUtf8().constData()); });
}

void x_report(const std::string &text)
{
    WQuestion box;
    box.title = QStringLiteral("Error");
    box.text = shown_text(text);
    box.buttons = {QStringLiteral("&Continue")};
    wquestion(gBase, box, [](int) {});
}

void x_watch()
{
    static QTimer *timer = nullptr;
    if (timer == nullptr) {
        timer = new QTimer;
        timer->setInterval(MISC_CHECK_MS);
        QObject::connect(timer, &QTimer::timeout, timer, [] {
            if (misc_tick() == 0)
                timer->stop();
        });
    }
    if (!timer->isActive())
        timer->start();
}

} // namespace

void misc_block(QWidget *widget, int on)
{
    if (widget == nullptr)
        return;
    wblock(widget, on ? 1 : 0);
    if (!widget->isWindow())
        widget->setEnabled(!on);
}

void misc_give_focus(QWidget *widget) { wfocus(widget); }

void misc_ui_setup()
{
    gMiscHooks.status = x_status;
    gMiscHooks.report = x_report;
    gMiscHooks.watch = x_watch;
    child_watch_install();
}

} // namespace tav

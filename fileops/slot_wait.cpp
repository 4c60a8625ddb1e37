// Jobs that wait for a free slot.
#include "fileops/slot_wait.h"

#include "fileops/slot.h"
#include "platform/w.h"

#include <QPointer>
#include <deque>

namespace tav {
namespace {

constexpr int GO_ON = 1, ABORT = 2; // the buttons

std::deque<std::function<void()>> sWaiting;
QPointer<QWidget> sBox; // says so while any waits, unless the user has read and closed it

void x_tell()
{
    const WQuestion question = {
        QStringLiteral("Copy/Move"),
        QStringLiteral("%1 operations run at a time.\nThe others start as these end.")
            .arg(SLOT_MAX),
        {QStringLiteral("&Continue"), QStringLiteral("&Abort")},
        GO_ON,
        GO_ON};
    sBox = wquestion(gBase, question, [](int answer) {
        if (answer == ABORT)
            sWaiting.clear();
    });
}

// What waits no longer needs no words.
void x_untell()
{
    if (sWaiting.empty() && sBox)
        sBox->close();
}

} // namespace

void slot_wait(std::function<void()> start)
{
    sWaiting.push_back(std::move(start));
    if (sWaiting.size() == 1)
        x_tell();
}

void slot_wait_next()
{
    while (!sWaiting.empty() && slot_count() < SLOT_MAX) {
        const std::function<void()> start = std::move(sWaiting.front());
        sWaiting.pop_front();
        start();
    }
    x_untell();
}

void slot_wait_drop()
{
    sWaiting.clear();
    x_untell();
}

int slot_waiting() { return static_cast<int>(sWaiting.size()); }

} // namespace tav

// The workers' questions: see slot_ask.h.
//
// A worker makes a Wait, has the box opened on the main thread and sleeps until the Wait is
// answered. Both sides hold it, so that either may go first. Boxes are known by the pane of their
// slot.
#include "fileops/slot_ask.h"

#include "fileops/long_name.h"
#include "fileops/slot.h"
#include "fileops/slot_window.h"
#include "platform/shown.h"
#include "platform/ui_gate.h"
#include "platform/w.h"

#include <QPointer>
#include <condition_variable>
#include <map>
#include <vector>

namespace tav {
namespace {

// An answer that a worker waits for.
struct Wait {
    std::mutex lock;
    std::condition_variable answered;
    bool done = false; // under lock, as answer
    int answer = 0;

    void give(int value)
    {
        std::lock_guard hold(lock);
        answer = value;
        done = true;
        answered.notify_all();
    }
    int take()
    {
        std::unique_lock hold(lock);
        answered.wait(hold, [this] { return done; });
        return answer;
    }
};

// Open boxes by the pane of their slot. Main thread.
std::map<const void *, QPointer<QWidget>> sBoxes;

// A message keeps its own line ends; everything else in it that could be obeyed is made visible.
QString x_message(const std::string &text)
{
    QStringList lines;
    for (size_t at = 0; at <= text.size();) {
        const size_t end = std::min(text.find('\n', at), text.size());
        lines << shown_text(std::string_view(text).substr(at, end - at));
        at = end + 1;
    }
    return lines.join(QLatin1Char('\n'));
}

WQuestion x_question(const FopAlert &alert)
{
    WQuestion question;
    question.title = shown_text(alert.title);
    question.text = x_message(alert.text);
    for (const std::string &label : alert.labels)
        question.buttons << QString::fromStdString(label);
    question.on_return = alert.on_return;
    question.on_close = alert.on_close;
    return question;
}

// Opens a box for a job; its answer goes to wait.
void x_open(const void *pane, const FopAlert &alert, const std::shared_ptr<Wait> &wait)
{
    QWidget *box = wquestion(nullptr, x_question(alert), [pane, wait](int answer) {
        sBoxes.erase(pane);
        wait->give(answer);
    });
    slot_window_centre(box);
    sBoxes[pane] = box;
}

// On the worker: the answer, or the closing one when the program ends meanwhile.
int x_ask(FileOp *job, const FopAlert &alert)
{
    const void *pane = job->slot.slot;
    auto wait = std::make_shared<Wait>();
    const bool opened = ui_call([&] {
        // An abort that came before the box could be closed by it.
        if (job->abort)
            wait->give(alert.on_close);
        else
            x_open(pane, alert, wait);
    });
    return opened ? wait->take() : alert.on_close;
}

void x_notice(FileOp *job, const char *title, const char *text)
{
    FopAlert alert{title, text, {"&Close"}, 1, 1};
    x_ask(job, alert);
}

// On the worker: whether the user gave a shorter name; the file then goes to that place.
bool FilenameTooLong(FileOp *job, const char *source, const char *dest, FopPlace &place)
{
    const void *pane = job->slot.slot;
    auto wait = std::make_shared<Wait>();
    auto named = std::make_shared<FopPlace>();
    const bool opened = ui_call([&] {
        if (job->abort) {
            wait->give(false);
            return;
        }
        QWidget *dialog = long_name_open(source, dest, *named, [pane, wait, named](bool renamed) {
            sBoxes.erase(pane);
            wait->give(renamed);
        });
        slot_window_centre(dialog);
        sBoxes[pane] = dialog;
    });
    if (!opened || !wait->take())
        return false;
    place = *named;
    return true;
}

void x_removed(FileOp *job) { slot_mark_removed(job->slot.slot); }

} // namespace

const FopReport gSlotReport = {x_ask, x_notice, nullptr, FilenameTooLong, x_removed};

void slot_ask_show(const void *pane)
{
    auto found = sBoxes.find(pane);
    if (found != sBoxes.end() && found->second)
        wfocus(found->second);
}

void slot_ask_close(const void *pane)
{
    std::vector<QPointer<QWidget>> boxes;
    for (auto &[owner, box] : sBoxes) {
        if (!pane || owner == pane)
            boxes.push_back(box);
    }
    for (const QPointer<QWidget> &box : boxes) {
        if (box)
            box->close();
    }
}

} // namespace tav

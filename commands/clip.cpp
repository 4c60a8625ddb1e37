// The clipboard as far as it holds files: following it, marks of cut files, taking names out of a
// cut.
#include "commands/clip.h"
#include "commands/clip_offer.h"
#include "commands/clip_order.h"
#include "commands/clip_read.h"
#include "commands/transf_marks.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QTimer>
#include <cstring>

namespace tav {

namespace {

constexpr int FIRST_READ_MS = 30; // until then the display has the first frame to see to

struct ClipState {
    unsigned turn = 0;                  // counts the changes of the clipboard
    bool reading = false;               // what it holds is not known yet
    bool silent = false;                // and will not be: its owner does not answer
    std::unique_ptr<TransfFiles> files; // what it holds; null: no files
    TransfMarks marks;                  // of files, when they are a cut
    ClipWaiter waiter;                  // for the end of the reading
    void (*notify)() = nullptr;
    QTimer *gather = nullptr; // runs while names wait to be taken off the clipboard
    // What was taken out of the offer of that id, for one that comes back by another way: whoever
    // else takes names out of it puts there what it knows.
    TransfId gone_id{};
    std::vector<std::pair<std::string, std::string>> gone; // directory and name
};

ClipState &x_state()
{
    static ClipState state;
    return state;
}

QClipboard *x_clipboard() { return QGuiApplication::clipboard(); }

// Takes the marks off a file and, should it be a directory, off everything below it.
bool x_remove(const std::string &directory, const std::string &name)
{
    TransfMarks &marks = x_state().marks;
    if (marks.left == 0)
        return false;
    const bool marked = transf_marks_remove(marks, directory, name);
    const std::string path = (directory == "/" ? "" : directory) + '/' + name;
    return transf_marks_remove_tree(marks, path) || marked;
}

// Takes out of the marks what was taken out of that offer before.
void x_forget_gone()
{
    ClipState &state = x_state();
    if (!state.files || !state.files->ours || state.files->id != state.gone_id)
        state.gone.clear();
    bool came_back = false;
    for (const auto &[directory, name] : state.gone)
        came_back = x_remove(directory, name) || came_back;
    if (came_back)
        state.gather->start();
}

void x_answer(ClipAnswer answer)
{
    if (const ClipWaiter waiter = std::exchange(x_state().waiter, nullptr))
        waiter(answer);
}

void x_known(ClipRead end, std::unique_ptr<TransfFiles> files)
{
    ClipState &state = x_state();
    const bool marked_before = state.marks.left != 0;
    transf_marks_clear(state.marks);
    state.reading = false;
    state.silent = end == ClipRead::silent;
    state.files = std::move(files);
    file_get_cut_files();
    x_forget_gone();
    if (state.notify && (marked_before || state.marks.left != 0))
        state.notify();
    x_answer(state.silent ? ClipAnswer::silent : ClipAnswer::known);
}

void x_read()
{
    ClipState &state = x_state();
    const unsigned turn = ++state.turn;
    state.reading = true;
    if (const auto *own = qobject_cast<const ClipOffer *>(
            x_clipboard()->ownsClipboard() ? x_clipboard()->mimeData() : nullptr)) {
        x_known(ClipRead::files, std::make_unique<TransfFiles>(own->files()));
        return;
    }
    clip_read_start([turn](ClipRead end, std::unique_ptr<TransfFiles> files) {
        if (turn == x_state().turn) // else it changed meanwhile and is read again
            x_known(end, std::move(files));
    });
}

void x_changed()
{
    x_state().gather->stop();      // what was to be taken off is no longer there
    x_answer(ClipAnswer::changed); // who waits meant what was there before
    x_read();
}

// Only an X server tells a window without the focus of a change; elsewhere it looks when it gets
// the focus.
void x_active(Qt::ApplicationState state)
{
    if (state == Qt::ApplicationActive && !x_clipboard()->ownsClipboard() &&
        QGuiApplication::platformName() != QLatin1String("xcb"))
        x_read();
}

// Gives the clipboard what is left of the cut that it holds. Somebody else's cut stays whole until
// nothing of it is left: its form is not ours to change.
void x_flush()
{
    ClipState &state = x_state();
    if (state.reading || !state.files || !state.files->cut)
        return;
    if (state.marks.left == 0) {
        x_clipboard()->setMimeData(new QMimeData); // holds nothing, whoever owned it before
        return;
    }
    if (!state.files->ours)
        return;
    auto rest = std::make_shared<FileListRecord>(transf_own(state.files->lists.front()));
    x_clipboard()->setMimeData(new ClipOffer(std::move(rest), true, state.files->id));
}

} // namespace

void clip_setup()
{
    ClipState &state = x_state();
    state.gather = new QTimer(qApp);
    state.gather->setSingleShot(true);
    state.gather->setInterval(CLIP_GATHER_MS);
    QObject::connect(state.gather, &QTimer::timeout, qApp, x_flush);
    QObject::connect(x_clipboard(), &QClipboard::dataChanged, qApp, x_changed);
    QObject::connect(qApp, &QGuiApplication::applicationStateChanged, qApp, x_active);
    state.reading = true;
    QTimer::singleShot(FIRST_READ_MS, qApp, [turn = state.turn] {
        clip_order_setup();
        if (turn == x_state().turn)
            x_read();
    });
}

void clip_put(std::shared_ptr<const FileListRecord> list, bool cut)
{
    x_clipboard()->setMimeData(new ClipOffer(std::move(list), cut, transf_new_id()));
    clip_order_is_ours();
}

const TransfFiles *clip_files() { return x_state().reading ? nullptr : x_state().files.get(); }

void clip_when_known(ClipWaiter waiter)
{
    const ClipState &state = x_state();
    if (clip_order_is_later())
        waiter(ClipAnswer::changed);
    else if (state.reading)
        x_state().waiter = std::move(waiter);
    else
        waiter(state.silent ? ClipAnswer::silent : ClipAnswer::known);
}

void clip_set_notify(void (*notify)()) { x_state().notify = notify; }

bool em_check_clipboard_for_type(const char *type)
{
    const TransfFiles *files = clip_files();
    return strcmp(type, TRANSF_COPY.data()) == 0 && files != nullptr &&
           (!files->cut || x_state().marks.left != 0);
}

void file_get_cut_files()
{
    ClipState &state = x_state();
    if (!state.files || !state.files->cut)
        transf_marks_clear(state.marks);
    else if (state.marks.directories.empty())
        transf_marks_set(state.marks, *state.files);
}

bool file_is_cut(const std::string &directory, std::string_view name)
{
    return transf_marks_has(x_state().marks, directory, name);
}

bool file_any_cut(const std::string &directory)
{
    const TransfMarks &marks = x_state().marks;
    auto found = marks.directories.find(directory);
    return found != marks.directories.end() && !found->second.names.empty();
}

int file_uncut(const char *directory, const char *name)
{
    ClipState &state = x_state();
    if (!x_remove(directory, name))
        return 0;
    if (state.files->ours) {
        state.gone_id = state.files->id;
        state.gone.emplace_back(directory, name);
    }
    if (!state.gather->isActive())
        state.gather->start();
    return 1;
}

} // namespace tav

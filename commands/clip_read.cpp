// Reading the clipboard. On X11 each reading is a detached worker: it owns its Reading together
// with the main thread, fetches, takes apart and posts the result. A newer reading cancels the one
// before, whose result nobody wants; at the program's end the gate drops what comes late.
//
// The worker's connection may see another owner before the toolkit's connection hears of it. So the
// worker sends a note by way of the server: it reaches the main thread behind the news of every
// change that the reading can have met, and the result counts only when the note has come.
#include "commands/clip_read.h"
#include "commands/clip_offer.h"
#include "commands/clip_x11.h"
#include "platform/ui_gate.h"
#include "platform/worker.h"

#include <QAbstractNativeEventFilter>
#include <QClipboard>
#include <QGuiApplication>
#include <atomic>
#include <xcb/xcb.h>

namespace tav {

namespace {

struct Reading {
    std::atomic<bool> cancel{false}; // the main thread sets it
    ClipX11Note note{};              // constant once the worker runs
    // The main thread's:
    bool posted = false; // the result is here
    bool noted = false;  // so is the note
    ClipRead end = ClipRead::none;
    std::unique_ptr<TransfFiles> files;
    ClipReadDone done;
};

// The reading under way, or null. Main thread.
std::shared_ptr<Reading> sReading;

void x_finish_when_complete()
{
    if (!sReading || !sReading->posted || !sReading->noted)
        return;
    const std::shared_ptr<Reading> reading = std::exchange(sReading, nullptr);
    reading->done(reading->end, std::move(reading->files));
}

void x_noted(uint32_t number)
{
    if (!sReading || sReading->note.number != number)
        return;
    sReading->noted = true;
    x_finish_when_complete();
}

// Receives the notes.
class Notes : public QAbstractNativeEventFilter {
public:
    uint32_t window() const { return m_window; }

    // On the toolkit's connection: what it makes gets its notes there.
    void open()
    {
        const auto *x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
        if (x11 == nullptr || x11->connection() == nullptr)
            return;
        xcb_connection_t *server = x11->connection();
        const xcb_screen_t *screen = xcb_setup_roots_iterator(xcb_get_setup(server)).data;
        m_window = xcb_generate_id(server);
        xcb_create_window(server, 0, m_window, screen->root, 0, 0, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
        xcb_flush(server);
        qGuiApp->installNativeEventFilter(this);
    }

    bool nativeEventFilter(const QByteArray &, void *message, qintptr *) override
    {
        const auto *event = static_cast<const xcb_client_message_event_t *>(message);
        if ((event->response_type & 0x7F) != XCB_CLIENT_MESSAGE || event->window != m_window)
            return false;
        ui_post([number = event->data.data32[0]] { x_noted(number); });
        return true;
    }

private:
    uint32_t m_window = 0;
};

// On the worker.
void x_read(const std::shared_ptr<Reading> &reading)
{
    auto files = std::make_shared<std::unique_ptr<TransfFiles>>(std::make_unique<TransfFiles>());
    ClipX11Note note = reading->note;
    const int result = clip_x11_fetch(nullptr, reading->cancel, **files, note);
    ui_post([reading, files, result, sent = note.sent] {
        if (reading != sReading)
            return;
        reading->posted = true;
        reading->noted = reading->noted || !sent;
        reading->end = result == 0                 ? ClipRead::files
                       : result == CLIP_X11_SILENT ? ClipRead::silent
                                                   : ClipRead::none;
        if (result == 0)
            reading->files = std::move(*files);
        x_finish_when_complete();
    });
}

void x_read_here(const ClipReadDone &done)
{
    const QMimeData *data = QGuiApplication::clipboard()->mimeData();
    auto files = std::make_unique<TransfFiles>();
    if (data && clip_offer_take(*data, *files) == 0)
        done(ClipRead::files, std::move(files));
    else
        done(ClipRead::none, nullptr);
}

} // namespace

void clip_read_start(const ClipReadDone &done)
{
    if (sReading)
        sReading->cancel = true;
    sReading.reset();
    if (QGuiApplication::platformName() != QLatin1String("xcb")) {
        x_read_here(done);
        return;
    }
    static Notes notes;
    static uint32_t sNumber = 0;
    if (notes.window() == 0)
        notes.open();
    auto reading = std::make_shared<Reading>();
    reading->note = {notes.window(), ++sNumber, false};
    reading->done = done;
    sReading = reading;
    if (worker_start([reading] { x_read(reading); }) != 0) {
        sReading.reset();
        x_read_here(done);
    }
}

} // namespace tav

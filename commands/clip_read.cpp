// Reading the clipboard. On X11 each reading is a detached worker: it owns its Reading together
// with the main thread, fetches, takes apart and posts the result. A newer reading cancels the one
// before, whose result nobody wants; at the program's end the gate drops what comes late.
#include "commands/clip_read.h"
#include "commands/clip_offer.h"
#include "commands/clip_x11.h"
#include "platform/ui_gate.h"
#include "platform/worker.h"

#include <QClipboard>
#include <QGuiApplication>
#include <atomic>

namespace tav {

namespace {

struct Reading {
    std::atomic<bool> cancel{false};                        // the main thread sets it
    std::function<void(std::unique_ptr<TransfFiles>)> done; // main thread
};

// The reading under way, or null. Main thread.
std::shared_ptr<Reading> sReading;

// On the worker.
void x_read(const std::shared_ptr<Reading> &reading)
{
    auto files = std::make_shared<std::unique_ptr<TransfFiles>>(std::make_unique<TransfFiles>());
    if (clip_x11_fetch(nullptr, reading->cancel, **files) != 0)
        files->reset();
    ui_post([reading, files] {
        if (reading != sReading)
            return;
        sReading.reset();
        reading->done(std::move(*files));
    });
}

std::unique_ptr<TransfFiles> x_read_here()
{
    const QMimeData *data = QGuiApplication::clipboard()->mimeData();
    auto files = std::make_unique<TransfFiles>();
    return data && clip_offer_take(*data, *files) == 0 ? std::move(files) : nullptr;
}

} // namespace

void clip_read_start(std::function<void(std::unique_ptr<TransfFiles>)> done)
{
    if (sReading)
        sReading->cancel = true;
    sReading.reset();
    if (QGuiApplication::platformName() != QLatin1String("xcb")) {
        done(x_read_here());
        return;
    }
    auto reading = std::make_shared<Reading>();
    reading->done = std::move(done);
    sReading = reading;
    if (worker_start([reading] { x_read(reading); }) != 0) {
        sReading.reset();
        reading->done(x_read_here());
    }
}

} // namespace tav

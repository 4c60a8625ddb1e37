// Starting a job for the user: a slot, the settings' flags, the worker.
#include "app/config.h"
#include "fileops/slot.h"
#include "fileops/slot_ask.h"
#include "fileops/slot_done.h"
#include "platform/w.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace tav {
namespace {

// The line that says so on the terminal, and a box for the user who sees none.
int x_failed(int op, int error, const QString &reason)
{
    errno = error;
    std::perror("failed to start operation!\n");
    const WQuestion report = {QString::fromLatin1(op == FOP_DELETE ? "Delete" : "Copy/Move"),
                              QStringLiteral("failed to start operation!\n") + reason,
                              {QStringLiteral("&Close")},
                              1,
                              1};
    wquestion(gBase, report, [](int) {});
    errno = error;
    return -1;
}

} // namespace

int fop_start_cmd(int op, const char *source_dir, int count, const char *const *names,
                  const char *dest)
{
    SlotWidgets slot{};
    if (!slot_add(slot))
        return x_failed(op, errno,
                        QString::fromLatin1("%1 operations are running already.").arg(SLOT_MAX));
    if (gFopHooks.get_cut_files)
        gFopHooks.get_cut_files();
    const bool one_dir = gFopHooks.one_dir_packed && gFopHooks.one_dir_packed();
    FopRequest request;
    request.op = op;
    request.source_dir = source_dir;
    request.count = count;
    request.names = names;
    request.dest = dest;
    request.flags = fop_config_flags(op, count, one_dir, gConfig->flags);
    request.slot = &slot;
    request.on_done = op == FOP_COPY ? nullptr : slot_item_done;
    request.report = &gSlotReport;
    FileOp *job = fop_create(request);
    if (job) {
        // Before the start: after it the job may already have come to its end.
        slot_set_job(slot.slot, job);
        if (fop_start(job) == 0)
            return 0;
    }
    const int error = errno;
    slot_set_job(slot.slot, nullptr);
    fop_free(job);
    slot_remove(slot.slot);
    return x_failed(op, error, QString::fromLocal8Bit(std::strerror(error)));
}

} // namespace tav

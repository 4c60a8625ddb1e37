// The window of the slots and the widgets of one slot. Main thread only.
#pragma once

#include "fileops/fop.h"

#include <QElapsedTimer>

class QWidget;

namespace tav {

// What a slot shows, taken over from its job.
struct SlotShown {
    std::string title, from, to;
    int percent = 0;
    int64_t seconds = 0;
    int64_t n_done = 0, n_items = 0;
    bool asking = false;
    unsigned changes = 0;       // of the progress record, as it was taken over
    QElapsedTimer since_redraw; // since it was shown last
};

// Takes the job's progress over when something changed and it is due. The job must be sure to be
// there.
bool slot_take_progress(FileOp &job, SlotShown &shown);

// Puts it into the widgets.
void slot_show(const SlotWidgets &widgets, const SlotShown &shown);

bool slot_window_add(SlotWidgets &slot);
void slot_window_remove(const SlotWidgets &slot);
void slot_window_resize(int count);
void slot_window_centre(QWidget *box); // puts a question over the window

} // namespace tav

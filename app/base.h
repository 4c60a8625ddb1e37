// The main window: its set-up in order, its metrics out of the settings and back in, the
// notification that keeps bars and boxes in step with the list, and its end. Main thread only.
#pragma once

#include "app/config.h"
#include "app/options.h"
#include "fileops/slot.h" // base_window_closed

#include <QMainWindow>

namespace tav {

// The window is closed, with settings or without: nothing refreshes it any more.
bool base_is_gone();

// When base_setup runs.
enum class BaseReason { before_realize, after_realize };

// Makes the main window from its form, sets it up, shows it as the options ask and opens
// gStartPath.
void base_create(const Options &options);

int base_setup(BaseReason reason); // the views, in their fixed order
int base_opening();                // the saved size and panel width, before the window is shown
int base_closing();                // saves settings, histories and hotlist, in this order
void base_update();                // the list's directory or selection changed

// Between the settings record and the window, in reference pixels. Values that make no sense are
// clamped on the way in and stay in the record as long as the user leaves the window as it is.
void base_set_window_metrics(const Config &record);
void base_get_window_metrics(Config &record);
void base_set_divider_metrics(const Config &record);
void base_get_divider_metrics(Config &record);

// Leaves: closes the window once; ends the program now, or after the last running job.
void base_leave();

// A signal asks the program to end: saves as closing does, aborts the jobs, ends with status 0.
void base_terminate();

// Closing the window by its frame is leaving.
class BaseWindow : public QMainWindow {
    Q_OBJECT
public:
    BaseWindow();

protected:
    void closeEvent(QCloseEvent *event) override;
    bool eventFilter(QObject *watched,
                     QEvent *event) override; // text fields keep Return for themselves
};

} // namespace tav

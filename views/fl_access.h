// What assistive technology sees of the list: a list whose items are made when they are asked for.
#pragma once

class QAccessibleEvent;

namespace tav {

class FlView;

// Hears every event in place of the toolkit; for tests, which run without assistive technology.
extern void (*gFlAccessHeard)(QAccessibleEvent *event);

void fl_access_install(FlView *view); // call once the view is complete
void fl_access_current();             // the cursor moved
void fl_access_rows_changed();        // the rows are other ones now

} // namespace tav

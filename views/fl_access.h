// What assistive technology sees of the list: a list whose items are made when they are asked for.
#pragma once

class QAccessibleEvent;

namespace tav {

// Where events go; the toolkit drops them while no assistive technology runs. Tests listen here.
extern void (*gFlAccessUpdate)(QAccessibleEvent *event);

void fl_access_install();      // makes interfaces for FlView from now on; harmless to repeat
void fl_access_current();      // the cursor moved
void fl_access_rows_changed(); // the rows are other ones now

} // namespace tav

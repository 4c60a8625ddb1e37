// The status bar: what is selected or typed on the left ("status1"), the directory's total on the
// right
// ("status2").
#pragma once

namespace tav {

// Writes the counts and sizes of the listing. While something is selected the right pane keeps its
// text.
void status_bar_update();

// Shows what was typed to find an entry, and clears the right pane.
void status_bar_key(const char *search_str);

} // namespace tav

// Going to a directory of the tree or of the hotlist whose disk may not answer. Main thread only.
#pragma once

#include <string>

namespace tav {

// Shows the directory (fl_newpath): at once when its disk answers soon, else when it does, unless
// something else was shown or asked for meanwhile. Waits no longer than a person would bear.
// keep_focus: the tree keeps the keyboard if it has it.
void tree_go(const std::string &path, bool keep_focus);

bool tree_go_is_waiting(); // for a disk
void tree_go_forget();     // whatever is waited for need not be shown any more

} // namespace tav

// The two boxes of the toolbars, for views/tb.cpp.
#pragma once

class QToolBar;

namespace tav {

void tb_path_setup(QToolBar *bar);   // makes "tb_curpath" in the bar; nothing for a null bar
void tb_filter_setup(QToolBar *bar); // makes "tb_filespec"

} // namespace tav

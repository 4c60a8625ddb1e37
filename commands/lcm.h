// The file list's context menu: what lies below its static part depends on the selection and on the
// clipboard, and is built afresh each time. Main thread only.
#pragma once

class QMenu;

namespace tav {

// Adds the items to the menu, which is about to be shown for the first time. Always 0.
int lcm_setup(QMenu *menu);

// The hotlist's context menu is its table alone; so is what the tree would have.
int hcm_setup(QMenu *menu);
int tcm_setup(QMenu *menu);

} // namespace tav

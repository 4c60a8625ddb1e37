// "Copy To" and "Move To": cascades of directories, and the prompt behind "Other...". Main thread
// only.
#pragma once

#include "commands/dtm.h"

#include <functional>
#include <string>

class QAction;
class QMenu;

namespace tav {

constexpr int MGEN_DEST_SIZE = 1024; // characters that the prompt takes

// Adds the two items to the menu, before an item (null: at the end), when something is selected.
// Always 3.
int mgen_work_insert(QMenu *menu, QAction *before);

// Fills a cascade with the hotlist's directories, behind a line when there are any.
void mgen_add_tree(QMenu *menu, DtmAction action);

// Copies or moves what is selected to the directory, after asking; null asks for the directory
// instead.
int x_copy_to_dest(const char *destination);
int x_move_to_dest(const char *destination);

// Asks whether to go on; only "&Yes" calls yes.
void confirm(const char *verb, const QString &what, const std::string &destination,
             std::function<void()> yes);

// Asks for a directory and calls done with it: absolute, with "/" at its end. Not called when the
// user does not say OK or leaves it blank. The next prompt begins with what was typed last.
void input_dest(const char *title, std::function<void(const std::string &)> done);

} // namespace tav

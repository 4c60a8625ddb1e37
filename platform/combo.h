// A combo box as the input histories see it.
#pragma once

#include "app/cl.h"

class QComboBox;

namespace tav {

// Refilling the box changes its list only, not the text that stands in it; only select does.
// Nothing is signalled.
ClBox combo_box(QComboBox *box);

// The bytes that the box's text stands for: those of the item that is shown so, else the text in
// UTF-8.
std::string combo_text(const QComboBox *box);

} // namespace tav

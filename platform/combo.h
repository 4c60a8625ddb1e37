// A combo box as the input histories see it.
#pragma once

#include "app/cl.h"

class QComboBox;

namespace tav {

ClBox combo_box(QComboBox *box);

} // namespace tav

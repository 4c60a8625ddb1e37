// The images and texts that are built into the program.
#pragma once

#include <QIcon>
#include <QString>

namespace tav {

// An image by its name ("closed_folder"), sharp at every size, readable on light and dark. Null
// icon when there is none of that name.
QIcon res_image(const char *name);

// A text by its name ("txt_003"); empty when there is none.
const char *res_text(const char *name);

} // namespace tav

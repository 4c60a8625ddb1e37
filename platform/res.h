// The images and texts that are built into the program.
#pragma once

#include <QIcon>
#include <QString>
#include <vector>

namespace tav {

// An image by its name ("closed_folder"), sharp at every size, readable on light and dark. Null
// icon when there is none of that name.
QIcon res_image(const char *name);

// An image and the length of its sides in the screen's pixels.
struct ResSized {
    const char *name;
    int side;
};

// Begins to draw these images on a worker, so that they are there when they are first shown.
void res_draw_early(std::vector<ResSized> wanted);

// A text by its name ("txt_003"); empty when there is none.
const char *res_text(const char *name);

} // namespace tav

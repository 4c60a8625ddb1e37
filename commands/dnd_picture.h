// The picture under the pointer while files are dragged.
#pragma once

#include "commands/transf.h"

#include <QPixmap>

namespace tav {

constexpr int DND_PICTURE_GAP = 8; // pixels between the pointer's tip and the picture

// An image and the name of the one file, or how many they are.
QPixmap dnd_picture(const FileListRecord &list);

} // namespace tav

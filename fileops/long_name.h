// The dialog for a name that the destination's file system refuses as too long: asks for a shorter
// one. The answer is a bare name in the shown directory. Main thread only.
#pragma once

#include "fileops/fop.h"

#include <functional>

class QWidget;

namespace tav {

constexpr size_t LONG_NAME_OLD = 255; // bytes shown of the old name
constexpr size_t LONG_NAME_NEW = 47;  // bytes of the new one

// Opens the dialog without waiting. When it is closed, answered gets whether a name was given;
// place then holds it and an open descriptor of the shown directory. Both must stay until then.
QWidget *long_name_open(const std::string &source, const std::string &dest, FopPlace &place,
                        const std::function<void(bool)> &answered);

// A name cut to at most limit bytes, between two characters.
std::string long_name_cut(std::string name, size_t limit);

} // namespace tav

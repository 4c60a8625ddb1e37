// File names are bytes; this makes text of them that can be shown. Invalid UTF-8, control
// characters and direction marks become visible; nothing in a name is ever obeyed as markup or
// mnemonic.
#pragma once

#include <QString>
#include <string_view>

namespace tav {

QString shown_text(std::string_view bytes);  // for labels, rows, message texts (plain text)
QString shown_label(std::string_view bytes); // the same with "&" doubled, for menus and buttons

} // namespace tav

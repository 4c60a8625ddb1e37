// File names are bytes; this makes text of them that can be shown. Invalid UTF-8, control
// characters and direction marks become visible; nothing in a name is ever obeyed as markup or
// mnemonic.
#pragma once

#include <QString>
#include <string>
#include <string_view>

namespace tav {

QString shown_text(std::string_view bytes);  // for labels, rows, message texts (plain text)
QString shown_label(std::string_view bytes); // the same with "&" doubled, for menus and buttons

// The bytes of a text that someone made by editing shown_text(before): what was left as it was
// keeps its bytes, which no text could say, and what was typed is UTF-8.
std::string shown_edited(std::string_view before, const QString &text);

} // namespace tav

// Plain ini texts: "[section]" headings and "key=value" lines. Everything else in the text (notes,
// what other versions wrote) stays as it is. Knows no Qt; any thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tav {

// The value of a key, the first that stands in the section; nothing when there is none.
std::optional<std::string> ini_get(std::string_view text, std::string_view section,
                                   std::string_view key);

// Sets it, in its line or behind the section's last one; makes the section when there is none.
void ini_set(std::string &text, std::string_view section, std::string_view key,
             std::string_view value);

} // namespace tav

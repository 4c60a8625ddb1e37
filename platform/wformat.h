// Formatting of messages: at most 255 bytes, made into text that can be shown.
#pragma once

#include <QString>
#include <cstdarg>
#include <string>

namespace tav {

constexpr size_t WFORMAT_LIMIT = 255; // bytes of a formatted message, the rest is cut

// A formatted message.
struct WFormatted {
    QString text;  // what is shown
    size_t length; // bytes before they were made visible, at most WFORMAT_LIMIT
};

// Formats as vprintf does. Line ends of the format stand; those in a "%s" argument are shown as
// characters, since they come from a name, unless the whole format is "%s".
[[gnu::format(printf, 1, 0)]] WFormatted wformat(const char *format, va_list arguments);

} // namespace tav

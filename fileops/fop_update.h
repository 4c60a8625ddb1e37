// Texts of a slot, made from the figures of a job's progress record. Pure; any thread.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tav {

constexpr size_t FOP_NAME_SHOWN = 60; // characters of a "from" or "to" line

// A path too long for max characters gets "*" for its middle: "From: /*/d/file".
std::string shrink_name(std::string_view text, size_t max);

// The time left: " ", "59 seconds", "1:00 minutes", "1:59 hours".
std::string fop_time_text(int64_t seconds);

// "3 of 20", the item that is being worked on; never more than there are.
std::string fop_count_text(int64_t n_done, int64_t n_items);

} // namespace tav

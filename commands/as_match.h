// A name pattern made ready to be matched against many names. The answers are those of es_strcmp.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tav {

// One alternative of a pattern.
struct AsAlternative {
    enum Kind { Suffix, Exact, General } kind; // "*" and plain text; plain text; anything else
    std::string text; // Suffix: what stands behind the "*"; General: the pattern, with "^" where it
                      // ignores case
};

struct AsMatch {
    bool fold = false; // letters match whatever their case
    std::vector<AsAlternative> alternatives;
};

AsMatch as_match_make(std::string_view pattern);

bool as_match(const AsMatch &match, std::string_view name);

} // namespace tav

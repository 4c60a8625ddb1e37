// A name pattern made ready to be matched against many names. The answers are those of es_strcmp.
#pragma once

#include "model/es.h"

#include <string>
#include <string_view>
#include <vector>

namespace tav {

// Most patterns are endings ("*.txt") or plain names; those need no wildcard matching.
struct AsMatch {
    EsPattern pattern;                // the whole of it, for all that is not as simple
    std::vector<std::string> endings; // the alternatives that are "*" and plain text: the text
    std::vector<std::string> names;   // those that are plain text
    bool fold = false;                // letters match whatever their case
    bool simple = true;               // endings and names are all there is
};

AsMatch as_match_make(std::string_view pattern);

bool as_match(const AsMatch &match, const char *name);

} // namespace tav

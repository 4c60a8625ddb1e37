// Programs of ours that share their name with something else in the system's packages: "pv" there
// meters a pipe, "pterm" takes other options, "slay" ends the user's session. Where a command names
// one of them and PATH leads to the system's, ours is meant. What the user has put elsewhere in
// PATH wins as usual. Knows no Qt; any thread once the folder is set.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tav {

// The folder of the programs that come along; empty: there is none. Set at start.
extern std::string gNamesakeFolder;

// Where the system's packages put programs; what lies elsewhere is the user's own. Tests have
// others.
extern std::vector<std::string> gNamesakeSystem;

// The PATH with which a command whose program has that name must be looked up and started; empty
// when that is the usual one.
std::string namesake_path(std::string_view program);

} // namespace tav

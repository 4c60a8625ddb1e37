// Names that mean something else in the system's own folders.
#include "platform/namesake.h"

#include "platform/child.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>

namespace tav {

std::string gNamesakeFolder;
std::vector<std::string> gNamesakeSystem = {"/usr/bin", "/bin", "/usr/sbin", "/sbin", "/usr/games"};

namespace {

constexpr std::string_view NAMES[] = {"pv", "pterm", "slay"};

template <typename List>
bool x_holds(const List &list, std::string_view text)
{
    return std::find(std::begin(list), std::end(list), text) != std::end(list);
}

} // namespace

std::string namesake_path(std::string_view program)
{
    if (gNamesakeFolder.empty() || !x_holds(NAMES, program))
        return {};
    const std::string found = child_find_program(std::string(program), nullptr);
    const std::string_view folder = std::string_view(found).substr(0, found.rfind('/'));
    if (found.empty() || !x_holds(gNamesakeSystem, folder))
        return {};
    const char *path = std::getenv("PATH");
    return gNamesakeFolder + ":" + (path ? path : "");
}

} // namespace tav

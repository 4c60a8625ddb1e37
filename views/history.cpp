// The two stacks of directories behind Back and Forward.
#include "views/history.h"

#include <iterator>

namespace tav {

HistoryStack backward_history;
HistoryStack forward_history;

void x_history_push(HistoryStack &stack, const char *path)
{
    if (!path || (!stack.nodes.empty() && stack.nodes.front() == path))
        return;
    if (stack.count < HISTORY_SIZE) {
        stack.nodes.emplace_front(path);
        ++stack.count;
        return;
    }
    // The oldest node is used again for the newest path.
    stack.nodes.splice(stack.nodes.begin(), stack.nodes, std::prev(stack.nodes.end()));
    if (stack.nodes.front() != path)
        stack.nodes.front() = path;
}

std::optional<std::string> x_history_pop(HistoryStack &stack)
{
    if (stack.nodes.empty())
        return std::nullopt;
    std::optional<std::string> path(std::move(stack.nodes.front()));
    stack.nodes.pop_front();
    --stack.count;
    return path;
}

void x_history_clear(HistoryStack &stack)
{
    stack.nodes.clear();
    stack.count = 0;
}

int x_history_get_array(const HistoryStack &stack, std::vector<std::string> &array)
{
    array.assign(stack.nodes.begin(), stack.nodes.end());
    return stack.count;
}

} // namespace tav

// Where the user came from: two stacks of directories, as a web browser keeps them. Knows no Qt;
// main thread only. Nothing here is saved.
#pragma once

#include <list>
#include <optional>
#include <string>
#include <vector>

namespace tav {

constexpr int HISTORY_SIZE = 10; // paths a stack holds at most

// A stack of paths, the most recent one in front.
struct HistoryStack {
    int count;                    // paths held, 0 to HISTORY_SIZE
    std::list<std::string> nodes; // from the most recent to the oldest
};

extern HistoryStack backward_history; // directories that were left
extern HistoryStack forward_history;  // directories that Back came from

// Puts path on top; forgets the oldest one of a full stack. A null path and one equal to the top
// change nothing.
void x_history_push(HistoryStack &stack, const char *path);

// Takes the most recent path off; nothing when the stack is empty.
std::optional<std::string> x_history_pop(HistoryStack &stack);

void x_history_clear(HistoryStack &stack);

// Fills array with the paths, the most recent first. Returns their number.
int x_history_get_array(const HistoryStack &stack, std::vector<std::string> &array);

} // namespace tav

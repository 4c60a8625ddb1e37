// Jobs that would have been started, for tests of what starts them.
#pragma once

#include "commands/file_op.h"
#include "fileops/fop.h"

#include <string>
#include <vector>

namespace tav::test {

// Every job in one line: "copy DIRECTORY: NAME NAME -> DESTINATION".
inline std::vector<std::string> gJobs;

inline void jobs_catch()
{
    gJobs.clear();
    gFileOpStart = [](int op, const char *directory, int count, const char *const *names,
                      const char *destination) {
        std::string line = op == FOP_COPY ? "copy " : op == FOP_MOVE ? "move " : "delete ";
        line += directory;
        line += ':';
        for (int i = 0; i < count; i++)
            line += std::string(" ") + names[i];
        gJobs.push_back(line + " -> " + destination);
        return 0;
    };
}

} // namespace tav::test

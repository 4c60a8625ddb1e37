// An ordinary user for tests that root runs; anyone else is one already.
#pragma once

#include <QtGlobal>
#include <unistd.h>

namespace tav::test {

// Runs as an ordinary user while it lives.
class Ordinary {
public:
    Ordinary()
    {
        constexpr uid_t NOBODY = 65534;
        if (geteuid() == 0 && (setegid(NOBODY) != 0 || seteuid(NOBODY) != 0))
            qFatal("cannot become an ordinary user");
    }
    ~Ordinary()
    {
        if (getuid() == 0 && (seteuid(0) != 0 || setegid(0) != 0))
            qFatal("cannot come back");
    }
    Ordinary(const Ordinary &) = delete;
    Ordinary &operator=(const Ordinary &) = delete;
};

} // namespace tav::test

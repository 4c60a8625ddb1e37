// Runs a program as an ordinary user: as_ordinary PROGRAM [ARGUMENT...]. Root becomes one first,
// anyone else is one already. The program is opened before that, so that it may lie where only root
// goes.
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <grp.h>
#include <unistd.h>

namespace {

constexpr unsigned NOBODY = 65534;
constexpr int FAILED = 2;

int x_fail(const char *what)
{
    perror(what);
    return FAILED;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc < 2)
        return FAILED;
    const int program = open(argv[1], O_RDONLY | O_CLOEXEC);
    if (program < 0)
        return x_fail(argv[1]);
    if (geteuid() == 0 &&
        (setgroups(0, nullptr) != 0 || setgid(NOBODY) != 0 || setuid(NOBODY) != 0))
        return x_fail("cannot become an ordinary user");
    unsetenv("TMPDIR"); // may be root's
    unsetenv("XDG_RUNTIME_DIR");
    setenv("HOME", "/tmp", 1);
    if (chdir("/") != 0)
        return x_fail("/");
    fexecve(program, argv + 1, environ);
    return x_fail(argv[1]);
}

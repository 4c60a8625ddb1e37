// Writes its arguments, each with a NUL behind it, to the file that ARGS_OUT names; the file
// appears when it is complete. What a launched program really receives is seen with it.
#include <cstdio>
#include <cstdlib>
#include <string>

int main(int count, char **arguments)
{
    const char *out = std::getenv("ARGS_OUT");
    if (out == nullptr)
        return 3;
    const std::string draft = std::string(out) + ".new";
    FILE *file = std::fopen(draft.c_str(), "we");
    if (file == nullptr)
        return 4;
    for (int i = 1; i < count; i++) {
        std::fputs(arguments[i], file);
        std::fputc('\0', file);
    }
    return std::fclose(file) == 0 && std::rename(draft.c_str(), out) == 0 ? 0 : 5;
}

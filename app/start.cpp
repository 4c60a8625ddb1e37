// Where the program starts: the start directory and the settings directory.
#include "app/start.h"

#include "app/options.h"
#include "model/es.h"
#include "model/fs.h"
#include "platform/namesake.h"

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <sys/stat.h>
#include <unistd.h>

namespace tav {

std::string gStartPath;
const char *gConfigPath = nullptr;

namespace {

// The working directory; "/" when it has none any more, so that the list has something to show.
std::string x_working_directory()
{
    char *path = getcwd(nullptr, 0);
    if (path == nullptr)
        return "/";
    std::string out = path[0] == '/' ? path : "/";
    std::free(path);
    return out;
}

// Where the platform programs lie beside the executable: installed, or in the tree it was built in.
constexpr const char *sProgramFolders[] = {"/../libexec/tav", "/../../data/programs"};

// Once is enough: a window that another one has started finds them there.
void x_append(std::string &path, const std::string &folder)
{
    if ((":" + path + ":").find(":" + folder + ":") == path.npos)
        path += ":" + folder;
}

} // namespace

int x_get_orphan_argument(std::string &out, const char *, int argc, const char *const *argv)
{
    for (int i = 1; i < argc; ++i) {
        if (argv[i][0] == '-')
            continue;
        if (argv[i][0] == '/') {
            out = argv[i];
            return static_cast<int>(out.size());
        }
        return es_construct_fullpath(out, x_working_directory().c_str(), argv[i]);
    }
    return 0;
}

std::string start_path(int argc, const char *const *argv)
{
    std::string path;
    if (x_get_orphan_argument(path, OPTIONS_LETTERS, argc, argv) == 0 ||
        fs_path_is_directory(path.c_str()) < 1)
        return x_working_directory();
    return path;
}

void start_settle_home()
{
    const char *home = std::getenv("HOME");
    if (home == nullptr || *home == '\0' || *home == '/')
        return;
    std::string path;
    es_construct_fullpath(path, x_working_directory().c_str(), home);
    setenv("HOME", path.c_str(), 1);
}

int x_get_config_path(std::string &out)
{
    std::string path;
    const char *home = std::getenv("HOME");
    es_construct_fullpath(path, home != nullptr ? home : "/", ".ph/tav");
    if (access(path.c_str(), F_OK) == 0) {
        if (access(path.c_str(), W_OK) == 0 && fs_path_is_directory(path.c_str()) > 0) {
            out = path;
            return 0;
        }
        std::fprintf(stderr, "TAV error: unable to access config directory %s\n", path.c_str());
        return -1;
    }
    if (mkdir(path.c_str(), 0700) == 0) {
        out = path;
        return 0;
    }
    std::fprintf(stderr, "TAV error: unable to create config directory %s\n", path.c_str());
    return -1;
}

void start_append_path(const std::string &executable)
{
    std::string folder = executable;
    es_remove_subdirectory(folder);
    const char *path = std::getenv("PATH");
    std::string all = path != nullptr && *path != '\0' ? path : "/usr/bin:/bin";
    for (const char *programs : sProgramFolders) {
        if (fs_path_is_directory((folder + programs).c_str()) <= 0)
            continue;
        x_append(all, folder + programs);
        if (gNamesakeFolder.empty())
            gNamesakeFolder = folder + programs;
    }
    x_append(all, folder);
    setenv("PATH", all.c_str(), 1);
}

} // namespace tav

// Joining, cutting and cleaning path names.
#include "model/es.h"

namespace tav {

int es_construct_fullpath(std::string &dst, const char *dir, const char *name)
{
    std::string path = dir ? dir : "";
    if (dir && name && !path.ends_with('/') && *name != '/')
        path += '/';
    if (name)
        path += name;
    while (path.size() > 2 && path.back() == '/')
        path.pop_back();
    dst = std::move(path);
    return static_cast<int>(dst.size());
}

int es_remove_subdirectory(std::string &path)
{
    for (size_t i = path.size() < 2 ? 0 : path.size() - 2; i > 0; i--) {
        if (path[i] == '/') {
            path.resize(i);
            return static_cast<int>(i);
        }
    }
    if (path.starts_with('/'))
        path = "/";
    return static_cast<int>(path.size());
}

void es_strip_pathname(std::string &path)
{
    if (path.size() < 2)
        return;
    size_t run = 0; // length of the run of "/" just passed
    size_t i = 0;
    for (; i < path.size(); i++) {
        if (path[i] == '/') {
            run++;
            continue;
        }
        size_t extra = run == i && run > 0 ? run - 1 : run; // a path may begin with two
        if (extra > 1)
            path.erase(i - (extra - 1), extra - 1);
        // The index is not taken back: what moved into the gap stays unexamined, meant so.
        run = 0;
    }
    if (run > 0)
        path.resize(run >= path.size() ? 1 : path.size() - run);
}

} // namespace tav

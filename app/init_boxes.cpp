// The five input histories as a whole: read at start, written and freed at exit.
#include "app/cl.h"

namespace tav {

ClHistory *gPathList = nullptr;
ClHistory *gSpecList = nullptr;
ClHistory *gWithList = nullptr;
ClHistory *gCopyList = nullptr;
ClHistory *gPatternList = nullptr;

void init_read_cboxs(const char *dir)
{
    init_destroy_cboxs();
    gPathList = cl_read(dir, "goto.001");
    gSpecList = cl_read(dir, "fspec.001");
    gWithList = cl_read(dir, "with.001");
    gCopyList = cl_read(dir, "copy.001");
    gPatternList = cl_read(dir, "pattern.001");
    if (gSpecList->count == 0)
        cl_add(gSpecList, "*");
}

// "with.001" and "copy.001" are never written, meant so: nothing adds to them.
void init_save_cboxs(const char *dir)
{
    cl_save(gPathList, dir, "goto.001");
    cl_save(gSpecList, dir, "fspec.001");
    cl_save(gPatternList, dir, "pattern.001");
}

void init_destroy_cboxs()
{
    for (ClHistory **list : {&gPathList, &gSpecList, &gWithList, &gCopyList, &gPatternList}) {
        cl_destroy(*list);
        *list = nullptr;
    }
}

} // namespace tav

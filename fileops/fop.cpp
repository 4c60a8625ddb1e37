// A job from its creation to its end: the record, the worker thread and the order of its passes.
#include "fileops/fop.h"

#include "app/config.h"
#include "fileops/fop_dirs.h"
#include "fileops/fop_internal.h"
#include "fileops/fop_sys.h"
#include "platform/worker.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <new>

namespace tav {

FopHooks gFopHooks;

FileOp::FileOp() = default;
FileOp::~FileOp() = default;

void _build_path(std::string &out, const char *dir, const char *name)
{
    out = std::strcmp(dir, "/") == 0 ? "" : dir;
    bool slash = !out.empty() && out.back() == '/';
    if (slash && *name == '/')
        out.pop_back();
    else if (!slash && *name != '/')
        out += '/';
    out += name;
    if (out.size() > 1 && out.back() == '/')
        out.pop_back();
}

void *fop_alloc(FileOp *job, size_t size)
{
    return alloc_add(job->pool, gFopSys.alloc(size ? size : 1));
}

char *fop_strdup(FileOp *job, const char *text)
{
    const size_t size = std::strlen(text) + 1;
    auto *copy = static_cast<char *>(fop_alloc(job, size));
    return copy ? static_cast<char *>(std::memcpy(copy, text, size)) : nullptr;
}

DirGroup *fop_group_new(FileOp *job, int count)
{
    auto *group = static_cast<DirGroup *>(fop_alloc(job, sizeof(DirGroup)));
    if (!group)
        return nullptr;
    *group = {};
    group->parent = -1;
    group->count = count;
    size_t n = static_cast<size_t>(count);
    group->names = static_cast<char **>(fop_alloc(job, n * sizeof(char *)));
    group->kinds = static_cast<uint8_t *>(fop_alloc(job, n));
    if (!group->names || !group->kinds)
        return nullptr;
    std::memset(group->kinds, FOP_UNKNOWN, n);
    return group;
}

namespace {

int x_first_group(FileOp *job, const FopRequest &request)
{
    job->groups = static_cast<DirGroup **>(fop_alloc(job, sizeof(DirGroup *)));
    DirGroup *group = fop_group_new(job, request.count);
    if (!job->groups || !group)
        return -1;
    group->dir = fop_strdup(job, request.source_dir);
    if (!group->dir)
        return -1;
    for (int i = 0; i < request.count; i++) {
        const char *name = request.names[i] ? request.names[i] : "";
        // Taken as names, "." and ".." would reach outside the source directory.
        group->names[i] = fop_strdup(job, fop_sys_is_dots(name) ? "" : name);
        if (!group->names[i])
            return -1;
    }
    job->groups[0] = group;
    job->n_groups = 1;
    return 0;
}

int x_fill(FileOp *job, const FopRequest &request)
{
    job->op = request.op;
    job->flags = request.flags;
    job->buf_size = static_cast<int>((request.flags & FOP_BUF_MASK) << 8);
    if (job->buf_size == 0)
        job->buf_size = FOP_BUF_SIZE;
    job->buf = static_cast<char *>(fop_alloc(job, static_cast<size_t>(job->buf_size)));
    if (!job->buf || x_first_group(job, request) != 0)
        return -1;
    job->dest = request.dest;
    job->src_len = std::strlen(request.source_dir);
    job->n_items = request.count;
    job->progress.n_items = request.count;
    job->on_done = request.on_done;
    job->report = request.report;
    job->context = request.context;
    if (request.slot)
        job->slot = *request.slot;
    job->dirs = fop_dirs_new(*job);
    return job->dirs ? 0 : -1;
}

} // namespace

FileOp *fop_create(const FopRequest &request)
{
    if (request.count <= 0 || !request.source_dir || !request.dest || !request.names) {
        errno = EINVAL;
        return nullptr;
    }
    auto *job = new (std::nothrow) FileOp;
    if (job)
        job->pool = alloc_start();
    if (job && job->pool && x_fill(job, request) == 0)
        return job;
    int error = errno;
    fop_free(job);
    errno = error;
    return nullptr;
}

int fop_start(FileOp *job)
{
    return worker_start([job] { fop_thread(job); });
}

FileOp *fop(const FopRequest &request)
{
    FileOp *job = fop_create(request);
    if (!job || fop_start(job) == 0)
        return job;
    int error = errno;
    fop_free(job);
    errno = error;
    return nullptr;
}

void fop_free(FileOp *job)
{
    if (!job)
        return;
    alloc_free(job->pool);
    delete job;
}

uint32_t fop_config_flags(int op, int count, bool one_dir, uint32_t options)
{
    uint32_t flags = 0;
    if (options & CONFIG_OVERWRITE)
        flags |= FOP_OVERWRITE;
    if (options & CONFIG_SYM_SYMLINKS)
        flags |= FOP_LINKS;
    if (options & CONFIG_SYM_FILES)
        flags |= FOP_FOLLOW;
    if (op != FOP_DELETE)
        return flags;
    if (count == 1 && !one_dir)
        flags |= (options & CONFIG_RM1_NO_PROMPT) ? FOP_DELETE_ALL : 0;
    else if (options & CONFIG_RM_I_PROMPT)
        flags |= FOP_DELETE_ASK;
    else if (options & CONFIG_RM_I_NO_PROMPT)
        flags |= FOP_DELETE_ALL;
    return flags;
}

namespace {

// The passes of a job, up to what ends it early. False when "Done" is not to be shown.
bool x_work(FileOp *job)
{
    fop_update_info(job, {"Scanning", "", "", "", "", FOP_PERCENT_RESET, FOP_TIME_FIRST});
    if (fop_check_dst(job) != 0)
        return false;
    if (job->op == FOP_MOVE && fop_move_files(job) != 0)
        return false;
    if (fop_build_filelist(job) != 0)
        return true;
    if (job->op == FOP_DELETE) {
        fop_delete_files(job, 1);
        return true;
    }
    job->flags |= FOP_DELETE_ALL;
    fop_update_info(job, {job->op == FOP_MOVE ? "Moving" : "Copying", nullptr, nullptr, nullptr,
                          nullptr, FOP_PERCENT_RESET, FOP_TIME_FIRST});
    fop_copy_files(job);
    return true;
}

} // namespace

void *fop_thread(void *argument)
{
    auto *job = static_cast<FileOp *>(argument);
    job->thread = pthread_self(); // here: after the start the job may be gone already
    bool done = x_work(job);
    job->dirs.reset();
    if (done) {
        fop_update_info(job, {nullptr, "Done", "", "", "", 100, FOP_TIME_BLANK});
        gFopSys.delay(FOP_DONE_MS);
    }
    if (job->report->mark_removed)
        job->report->mark_removed(job);
    fop_free(job);
    return nullptr;
}

} // namespace tav

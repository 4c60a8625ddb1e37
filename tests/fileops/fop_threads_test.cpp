// Many jobs at once, each on its own worker. "TAV_SECONDS" says for how long.
#include "fop_driver.h"

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace tav {
namespace {

constexpr int JOBS = 20;

std::mutex sMutex;
std::condition_variable sChanged;
int sRunning = 0; // under sMutex

const FopReport REPORT = {
    [](FileOp *, const FopAlert &alert) { return alert.on_return; },
    [](FileOp *, const char *, const char *) {},
    nullptr,
    nullptr,
    [](FileOp *) {
        std::lock_guard hold(sMutex);
        sRunning--;
        sChanged.notify_all();
    },
};

void x_start(int op, const std::string &source, const char *name, const std::string &dest)
{
    FopRequest request;
    request.op = op;
    request.source_dir = source.c_str();
    request.count = 1;
    request.names = &name;
    request.dest = dest.c_str();
    request.flags = FOP_LINKS | FOP_DELETE_ALL;
    request.report = &REPORT;
    {
        std::lock_guard hold(sMutex);
        sRunning++;
    }
    FileOp *job = fop_create(request);
    ASSERT_TRUE(job);
    // What the main thread does meanwhile: it pauses, resumes, and looks at the progress.
    job->pause = 1;
    ASSERT_EQ(fop_start(job), 0);
    {
        std::lock_guard hold(job->progress.lock);
        job->progress.at_once = false;
    }
    job->pause = 0;
}

void x_wait_all()
{
    std::unique_lock hold(sMutex);
    ASSERT_TRUE(sChanged.wait_for(hold, std::chrono::seconds(200), [] { return sRunning == 0; }));
}

TEST(FopThreads, twenty_jobs_at_once)
{
    const char *seconds = std::getenv("TAV_SECONDS");
    auto end =
        std::chrono::steady_clock::now() + std::chrono::seconds(seconds ? std::atoi(seconds) : 1);
    SysGuard sys;
    // The job is looked at after its start, so that its end has to wait a moment.
    gFopSys.delay = [](unsigned) { gFopSysReal.delay(20); };
    JobDir dir("/dev/shm");
    for (int i = 0; i < JOBS; i++) {
        std::string at = "j" + std::to_string(i);
        dir.dir(at + "/src/d/e");
        dir.dir(at + "/dst");
        dir.file(at + "/src/d/a", "1");
        dir.file(at + "/src/d/e/b", std::string(100'000, 'x'));
        dir.link(at + "/src/d/l", "a");
    }
    auto tree = dir.all("j0/src");
    do {
        for (auto [op, from, to] : {std::tuple(FOP_COPY, "/src", "/dst"),
                                    {FOP_DELETE, "/src", ""},
                                    {FOP_MOVE, "/dst", "/src"}}) {
            for (int i = 0; i < JOBS; i++) {
                std::string at = dir / ("j" + std::to_string(i));
                x_start(op, at + from, "d", *to ? at + to : "");
            }
            x_wait_all();
        }
    } while (std::chrono::steady_clock::now() < end && !HasFailure());
    for (int i = 0; i < JOBS; i++) {
        EXPECT_EQ(dir.all("j" + std::to_string(i) + "/src"), tree);
        EXPECT_TRUE(dir.all("j" + std::to_string(i) + "/dst").empty());
    }
}

TEST(FopThreads, fifty_jobs_share_the_descriptors_that_there_are)
{
    SysGuard sys;
    gFopSys.delay = [](unsigned) { gFopSysReal.delay(20); };
    JobDir dir("/dev/shm");
    for (int i = 0; i < 50; i++)
        dir.dir("j" + std::to_string(i) + "/src/d/e/f/g/h/i/j/k/l");
    for (int i = 0; i < 50; i++)
        x_start(FOP_COPY, dir / ("j" + std::to_string(i) + "/src"), "d",
                dir / ("j" + std::to_string(i)));
    x_wait_all();
    for (int i = 0; i < 50; i++)
        EXPECT_TRUE(dir.exists("j" + std::to_string(i) + "/d/e/f/g/h/i/j/k/l"));
}

TEST(FopThreads, abort_while_asking_ends_the_job)
{
    JobDir dir;
    dir.dir("src");
    dir.dir("dst");
    for (const char *name : {"a", "b", "c"})
        dir.file(std::string("src/") + name, "new");
    dir.file("dst/a", "old");
    Driver driver;
    FileOp *running = nullptr;
    driver.on_created = [&](FileOp &job) { running = &job; };
    driver.on_alert = [&](const FopAlert &) {
        EXPECT_TRUE(running->progress.asking) << "the slot shows that it waits";
        running->abort = 1;
        return 1;
    };
    driver.copy(dir, {"a", "b", "c"});
    EXPECT_EQ(dir.all("dst"), (std::map<std::string, std::string>{{"a", "file old"}}));
    EXPECT_TRUE(driver.finished_done);
}

} // namespace
} // namespace tav

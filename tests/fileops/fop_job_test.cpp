// Jobs: creating them, their flags, joining paths, questions.
#include "app/config.h"
#include "fileops/fop_internal.h"
#include "fop_driver.h"

#include <cerrno>
#include <condition_variable>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

namespace tav {
namespace {

FopRequest x_request(int count, const char *source, const char *dest, const char *const *names)
{
    FopRequest request;
    request.source_dir = source;
    request.count = count;
    request.names = names;
    request.dest = dest;
    return request;
}

TEST(FopCreate, refuses_no_names_and_null_directories)
{
    const char *names[] = {"a"};
    for (const FopRequest &request :
         {x_request(0, "/s", "/d", names), x_request(-1, "/s", "/d", names),
          x_request(1, nullptr, "/d", names), x_request(1, "/s", nullptr, names)}) {
        errno = 0;
        EXPECT_EQ(fop_create(request), nullptr);
        EXPECT_EQ(errno, EINVAL);
        errno = 0;
        EXPECT_EQ(fop(request), nullptr);
        EXPECT_EQ(errno, EINVAL);
    }
}

TEST(FopCreate, fills_the_record)
{
    const char *names[] = {"a", "b"};
    SlotWidgets slot{};
    slot.slot = &slot;
    FopRequest request = x_request(2, "/source", "/dest", names);
    request.op = FOP_MOVE;
    request.flags = 0x0030 | FOP_FOLLOW;
    request.slot = &slot;
    FileOp *job = fop_create(request);
    ASSERT_TRUE(job);
    EXPECT_EQ(job->op, FOP_MOVE);
    EXPECT_EQ(job->buf_size, 3 * 4096);
    EXPECT_EQ(job->src_len, 7u);
    EXPECT_EQ(job->n_items, 2);
    EXPECT_EQ(job->n_groups, 1);
    EXPECT_EQ(job->dest, "/dest");
    EXPECT_EQ(job->slot.slot, &slot);
    EXPECT_STREQ(job->groups[0]->dir, "/source");
    EXPECT_STREQ(job->groups[0]->names[1], "b");
    EXPECT_NE(job->groups[0]->names[1], names[1]) << "a copy of its own";
    fop_free(job);
}

TEST(FopCreate, takes_32768_bytes_of_buffer_without_size_bits)
{
    const char *names[] = {"a"};
    FileOp *job = fop_create(x_request(1, "/s", "/d", names));
    ASSERT_TRUE(job);
    EXPECT_EQ(job->buf_size, 32768);
    fop_free(job);
}

TEST(FopCreate, never_takes_the_directory_itself_or_its_parent_for_an_item)
{
    const char *names[] = {".", "..", "a"};
    FileOp *job = fop_create(x_request(3, "/s", "/d", names));
    ASSERT_TRUE(job);
    EXPECT_STREQ(job->groups[0]->names[0], "");
    EXPECT_STREQ(job->groups[0]->names[1], "");
    fop_free(job);
}

// The allocation number n fails, from 0.
int sLeft;
void *x_alloc(size_t size)
{
    if (sLeft-- != 0)
        return std::malloc(size);
    errno = ENOMEM;
    return nullptr;
}

TEST(FopMemory, without_it_there_is_no_job)
{
    SysGuard sys;
    const char *names[] = {"a", "b"};
    int n = 0;
    for (FileOp *job = nullptr; !job; n++) {
        gFopSys.alloc = x_alloc;
        sLeft = n;
        errno = 0;
        job = fop_create(x_request(2, "/s", "/d", names));
        EXPECT_EQ(errno, job ? 0 : ENOMEM);
        EXPECT_EQ(job != nullptr, sLeft >= 0);
        fop_free(job);
    }
    EXPECT_GT(n, 5);
}

TEST(FopMemory, when_it_ends_the_job_says_so_and_loses_nothing)
{
    for (int op : {FOP_COPY, FOP_MOVE, FOP_DELETE}) {
        int n = 0;
        for (bool failed = true; failed; n++) {
            JobDir dir;
            dir.dir("src/d/e");
            dir.dir("dst");
            dir.file("src/d/a", "one");
            dir.file("src/d/e/b", "two");
            auto before = dir.all("src");
            Driver driver;
            sys_two_file_systems();
            driver.on_created = [&](FileOp &) {
                sLeft = n;
                gFopSys.alloc = x_alloc;
            };
            driver.run(op, dir / "src", {"d"}, op == FOP_DELETE ? "" : dir / "dst");
            failed = sLeft < 0;
            EXPECT_EQ(driver.notices.size(), failed ? 1u : 0u);
            if (!failed)
                break;
            EXPECT_EQ(driver.notices[0], "Memory Allocation: Out of memory!");
            auto src = dir.all("src"), dst = dir.all("dst");
            for (auto &[name, what] : before)
                EXPECT_EQ(src.count(name) ? src[name] : dst[name], what) << name << " is lost";
            EXPECT_TRUE(driver.finished_done);
        }
        EXPECT_GT(n, 8);
    }
}

TEST(FopThread, runs_detached_and_marks_its_end_last)
{
    static std::mutex sLock;
    static std::condition_variable sEnded;
    static bool sDone;
    sDone = false;
    SysGuard sys;
    JobDir dir;
    dir.dir("src");
    dir.dir("dst");
    dir.file("src/a", "one");
    FopReport report{};
    report.alert = [](FileOp *, const FopAlert &alert) { return alert.on_close; };
    report.notice = [](FileOp *, const char *, const char *) {};
    report.mark_removed = [](FileOp *) {
        std::lock_guard hold(sLock);
        sDone = true;
        sEnded.notify_all();
    };
    const char *names[] = {"a"};
    std::string source = dir / "src", dest = dir / "dst";
    FopRequest request = x_request(1, source.c_str(), dest.c_str(), names);
    request.report = &report;
    ASSERT_TRUE(fop(request));
    std::unique_lock hold(sLock);
    ASSERT_TRUE(sEnded.wait_for(hold, std::chrono::seconds(30), [] { return sDone; }));
    EXPECT_EQ(dir.read("dst/a"), "one");
}

TEST(FopThread, shows_done_for_a_second)
{
    static unsigned sDelay;
    sDelay = 0;
    JobDir dir;
    dir.dir("src");
    dir.dir("dst");
    dir.file("src/a", "one");
    Driver driver;
    gFopSys.delay = [](unsigned milliseconds) { sDelay = milliseconds; };
    driver.copy(dir, {"a"});
    EXPECT_EQ(sDelay, 1000u);
    EXPECT_EQ(driver.last_from, "Done");
    EXPECT_EQ(driver.removed, 1);
}

TEST(FopThread, a_relative_path_holds_for_the_directory_of_the_start)
{
    JobDir dir;
    dir.dir("src");
    dir.dir("dst");
    dir.file("src/a", "one");
    int here = ::open(".", O_PATH | O_DIRECTORY | O_CLOEXEC);
    ASSERT_EQ(::chdir(dir.path.c_str()), 0);
    Driver driver;
    driver.on_created = [&](FileOp &) { EXPECT_EQ(::chdir("/"), 0); };
    driver.run(FOP_COPY, "src", {"a"}, "dst");
    ASSERT_EQ(::fchdir(here), 0);
    ::close(here);
    EXPECT_EQ(dir.read("dst/a"), "one");
}

struct FlagsRow {
    const char *name;
    int op, count;
    bool one_dir;
    uint32_t options, flags;
};

TEST(FopFlags, follow_the_settings)
{
    const FlagsRow rows[] = {
        {"nothing", FOP_COPY, 1, false, 0, 0},
        {"overwrite", FOP_COPY, 1, false, CONFIG_OVERWRITE, FOP_OVERWRITE},
        {"links", FOP_COPY, 1, false, CONFIG_SYM_SYMLINKS, FOP_LINKS},
        {"files", FOP_MOVE, 1, false, CONFIG_SYM_FILES, FOP_FOLLOW},
        {"one, never asked", FOP_DELETE, 1, false, CONFIG_RM1_NO_PROMPT, FOP_DELETE_ALL},
        {"one, others asked", FOP_DELETE, 1, false, CONFIG_RM_I_PROMPT, 0},
        {"one directory", FOP_DELETE, 1, true, CONFIG_RM1_NO_PROMPT, 0},
        {"one directory, asked", FOP_DELETE, 1, true, CONFIG_RM_I_PROMPT, FOP_DELETE_ASK},
        {"several, asked", FOP_DELETE, 2, false, CONFIG_RM_I_PROMPT, FOP_DELETE_ASK},
        {"several, never", FOP_DELETE, 2, false, CONFIG_RM_I_NO_PROMPT, FOP_DELETE_ALL},
        {"both bits", FOP_DELETE, 2, false, CONFIG_RM_I_PROMPT | CONFIG_RM_I_NO_PROMPT,
         FOP_DELETE_ASK},
        {"copy knows no delete bits", FOP_COPY, 2, false, CONFIG_RM_I_PROMPT, 0},
    };
    for (const FlagsRow &row : rows)
        EXPECT_EQ(fop_config_flags(row.op, row.count, row.one_dir, row.options), row.flags)
            << row.name;
}

TEST(FopPath, joins)
{
    const char *rows[][3] = {{"/", "a", "/a"},     {"/x/", "/a", "/x/a"}, {"/x", "a", "/x/a"},
                             {"/x", "/a", "/x/a"}, {"/x/", "a", "/x/a"},  {"/x", "", "/x"},
                             {"/", "", "/"},       {"/x", "a/", "/x/a"},  {"/", "/", "/"}};
    std::string out;
    for (auto &row : rows) {
        _build_path(out, row[0], row[1]);
        EXPECT_EQ(out, row[2]) << row[0] << " and " << row[1];
    }
}

TEST(FopAlert, splits_labels_at_bars_and_commas)
{
    FopAlert alert;
    fop_alert_buttons(alert, "&Yes,&No|&Maybe");
    EXPECT_EQ(alert.labels, (std::vector<std::string>{"&Yes", "&No", "&Maybe"}));
    EXPECT_EQ(alert.on_return, 1) << "without @ the first";
    EXPECT_EQ(alert.on_close, 3) << "without # the last";
}

TEST(FopAlert, takes_the_marks_off)
{
    FopAlert alert;
    fop_alert_buttons(alert, "#&Files|@&Links|&Abort");
    EXPECT_EQ(alert.labels, (std::vector<std::string>{"&Files", "&Links", "&Abort"}));
    EXPECT_EQ(alert.on_return, 2);
    EXPECT_EQ(alert.on_close, 1);
}

TEST(FopAlert, a_name_cannot_begin_a_line_of_its_own)
{
    JobDir dir;
    dir.dir("src");
    Driver driver;
    driver.run(FOP_COPY, dir / "src", {"a'\nis harmless", "b"}, dir.path);
    ASSERT_EQ(driver.alerts.size(), 1u);
    EXPECT_EQ(driver.alerts[0].text, "Unable to stat '" + (dir / "src") +
                                         "/a'\u240Ais harmless'\nNo such file or directory\n");
}

TEST(FopAlert, cuts_a_message_of_more_than_1023_bytes_between_characters)
{
    JobDir dir;
    dir.dir("src");
    Driver driver;
    std::string name(255, 'x');
    std::string deep;
    for (int i = 0; i < 8; i++)
        deep += "/" + std::string(200, 'y');
    driver.run(FOP_COPY, "/nowhere" + deep, {name, "b"}, dir.path);
    ASSERT_EQ(driver.alerts.size(), 1u);
    EXPECT_LE(driver.alerts[0].text.size(), 1023u);
    EXPECT_GE(driver.alerts[0].text.size(), 1019u);
}

} // namespace
} // namespace tav

// What a slot is told by its job, and the texts that are made of it.
#include "fileops/fop_internal.h"
#include "fileops/fop_update.h"
#include "fop_driver.h"

#include <algorithm>
#include <cerrno>

namespace tav {
namespace {

struct FopShow : FopTest {
    std::vector<std::string> lines; // everything that was shown: "title|from|to|percent|seconds"
    FopShow()
    {
        driver.on_update = [this](const FopUpdate &update) {
            auto text = [](const char *label, const char *name) {
                return name ? std::string(label ? label : "") + name : "-";
            };
            lines.push_back(text(nullptr, update.title) + "|" +
                            text(update.from_label, update.from_name) + "|" +
                            text(update.to_label, update.to_name) + "|" +
                            std::to_string(update.percent) + "|" + std::to_string(update.seconds));
        };
    }
    // How often a line begins with that.
    long count(const std::string &begin) const
    {
        return std::count_if(lines.begin(), lines.end(), [&](const std::string &line) {
            return line.compare(0, begin.size(), begin) == 0;
        });
    }
};

TEST_F(FopShow, a_copy_tells_of_its_scan_its_files_and_its_end)
{
    dir.dir("src/d");
    dir.file("src/d/a", "1");
    driver.copy(dir, {"d"});
    std::string item = "-|From: " + (dir / "src/d/a") + "|  To: " + (dir / "dst/d/a") + "|";
    ASSERT_GE(lines.size(), 4u);
    EXPECT_EQ(lines[0], "Scanning|||-100|-1");
    EXPECT_EQ(lines[1], "Scanning|-|-|-1|-1") << "for the entry that was found";
    EXPECT_EQ(lines[2], "Copying|-|-|-100|-1");
    EXPECT_EQ(count(item), 2) << "before it and after it";
    EXPECT_EQ(lines.back(), "-|Done||100|0");
}

TEST_F(FopShow, a_delete_tells_of_each_name_and_what_share_is_done)
{
    for (const char *name : {"a", "b", "c", "d"})
        dir.file(std::string("src/") + name, "1");
    driver.remove(dir, {"a", "b", "c", "d"});
    std::string begin = "Deleting| Dir: " + (dir / "src") + "|File: ";
    ASSERT_EQ(lines.size(), 6u);
    EXPECT_EQ(lines[1], begin + "d|0|-1");
    for (int i = 1; i < 4; i++)
        EXPECT_EQ(lines[size_t(i) + 1].find(begin + "dcba"[i] + "|" + std::to_string(25 * i)), 0u);
}

TEST_F(FopShow, the_delete_pass_of_a_move_shows_nothing)
{
    sys_two_file_systems();
    dir.file("src/a", "1");
    driver.move(dir, {"a"});
    EXPECT_FALSE(dir.exists("src/a"));
    EXPECT_EQ(count("Deleting"), 0);
}

TEST_F(FopShow, no_time_stands_beside_the_question_of_a_delete)
{
    dir.file("src/a", "1", 0444);
    std::string before;
    driver.on_alert = [&](const FopAlert &) {
        before = lines.back();
        return 1;
    };
    driver.remove(dir, {"a"});
    EXPECT_EQ(before, "-|-|-|-1|0");
}

TEST_F(FopShow, within_a_large_file_the_bar_goes_on)
{
    dir.file("src/a", std::string(3 << 20, 'x'));
    driver.copy(dir, {"a"});
    bool middle = false;
    for (int percent = 1; percent < 100; percent++)
        middle |= count("-|-|-|" + std::to_string(percent) + "|") > 0;
    EXPECT_TRUE(middle);
}

// A job that only keeps what it is told.
struct FopTold : testing::Test {
    FileOp job;
    FopReport report{};
    FopTold()
    {
        job.report = &report;
        job.n_items = 20;
        fop_update_info(&job, {"Copying", "From: ", "a", "  To: ", "b", 40, 70});
    }
};

TEST_F(FopTold, keeps_what_is_not_given)
{
    fop_update_info(&job, {nullptr, nullptr, nullptr, nullptr, nullptr, FOP_PERCENT_KEEP, -2});
    EXPECT_EQ(job.progress.title, "Copying");
    EXPECT_EQ(job.progress.from, "From: a");
    EXPECT_EQ(job.progress.to, "  To: b");
    EXPECT_EQ(job.progress.percent, 40);
    EXPECT_EQ(job.progress.seconds, 70) << "-2 keeps the text";
}

TEST_F(FopTold, a_name_without_a_label_stands_alone)
{
    fop_update_info(&job, {nullptr, nullptr, "Done", nullptr, "", FOP_PERCENT_KEEP, -2});
    EXPECT_EQ(job.progress.from, "Done");
    EXPECT_EQ(job.progress.to, "");
}

TEST_F(FopTold, minus_100_empties_the_bar)
{
    fop_update_info(&job, {nullptr, nullptr, nullptr, nullptr, nullptr, FOP_PERCENT_RESET, -2});
    EXPECT_EQ(job.progress.percent, 0);
}

TEST_F(FopTold, only_a_time_of_0_is_shown_at_once)
{
    EXPECT_FALSE(job.progress.at_once);
    fop_update_info(&job, {nullptr, nullptr, nullptr, nullptr, nullptr, 50, -1});
    EXPECT_EQ(fop_time_text(job.progress.seconds), " ");
    EXPECT_FALSE(job.progress.at_once);
    fop_update_info(&job, {nullptr, nullptr, nullptr, nullptr, nullptr, 50, 0});
    EXPECT_EQ(fop_time_text(job.progress.seconds), " ");
    EXPECT_TRUE(job.progress.at_once);
}

TEST_F(FopTold, the_figures_are_taken_over_every_time)
{
    job.n_done = 7;
    job.n_items = 30;
    fop_update_info(&job, {nullptr, nullptr, nullptr, nullptr, nullptr, FOP_PERCENT_KEEP, -2});
    EXPECT_EQ(fop_count_text(job.progress.n_done, job.progress.n_items), "8 of 30");
}

TEST_F(FopTold, errno_stays)
{
    report.update = [](FileOp *, const FopUpdate &) { errno = EIO; };
    errno = ENOENT;
    fop_update_info(&job, {"Copying"});
    EXPECT_EQ(errno, ENOENT);
}

TEST(FopTime, reads_as_described)
{
    EXPECT_EQ(fop_time_text(7199), "1:59 hours");
    EXPECT_EQ(fop_time_text(3600), "1:00 hours");
    EXPECT_EQ(fop_time_text(3599), "59:59 minutes");
    EXPECT_EQ(fop_time_text(60), "1:00 minutes");
    EXPECT_EQ(fop_time_text(59), "59 seconds");
    EXPECT_EQ(fop_time_text(1), "1 seconds");
    EXPECT_EQ(fop_time_text(0), " ");
    EXPECT_EQ(fop_time_text(-1), " ");
}

TEST(FopTime, is_unknown_at_first_and_never_infinite)
{
    SysGuard sys;
    static timespec sNow;
    sNow = {1000, 0};
    gFopSys.now = [](clockid_t, timespec *time) { *time = sNow; };
    FileOp job;
    EXPECT_EQ(fop_calc_time_left(&job, 0, 100), FOP_TIME_FIRST);
    sNow = {1000, 1'000'000};
    EXPECT_EQ(fop_calc_time_left(&job, 50, 100), FOP_TIME_KEEP) << "too little time has passed";
    sNow = {1010, 0};
    EXPECT_EQ(fop_calc_time_left(&job, 0, 100), FOP_TIME_KEEP);
    EXPECT_EQ(fop_calc_time_left(&job, 0, 0), FOP_TIME_KEEP);
    EXPECT_EQ(fop_calc_time_left(&job, 50, 100), 11);
    EXPECT_EQ(fop_calc_time_left(&job, int64_t{1} << 40, int64_t{3} << 40), 21);
}

TEST(FopPercent, is_a_number_between_0_and_100)
{
    EXPECT_EQ(fop_percent(0, 0), 0);
    EXPECT_EQ(fop_percent(5, 0), 0);
    EXPECT_EQ(fop_percent(1, 3), 33);
    EXPECT_EQ(fop_percent(7, 5), 100);
    EXPECT_EQ(fop_percent(int64_t{5} << 40, int64_t{10} << 40), 50);
}

TEST(FopCount, is_never_more_than_the_total)
{
    EXPECT_EQ(fop_count_text(0, 3), "1 of 3");
    EXPECT_EQ(fop_count_text(2, 3), "3 of 3");
    EXPECT_EQ(fop_count_text(3, 3), "3 of 3");
}

TEST(ShrinkName, keeps_what_fits_and_what_has_no_directory)
{
    EXPECT_EQ(shrink_name("From: /a/b", 60), "From: /a/b");
    EXPECT_EQ(shrink_name("From: " + std::string(80, 'x'), 60), "From: " + std::string(80, 'x'));
    EXPECT_EQ(shrink_name("", 60), "");
}

TEST(ShrinkName, replaces_the_middle_of_a_long_path)
{
    EXPECT_EQ(shrink_name("From: /a/b/c/d/file", 14), "From: /*/d/file");
    EXPECT_EQ(shrink_name("/aaaaaaaaaa/bbbbbbbbbb/c", 20), "/*/bbbbbbbbbb/c");
    EXPECT_EQ(shrink_name("  To: /aaaaaaaaaaaaaaaa/bbbbbbbbbbbbbbbbbbb", 12),
              "  To: /aaaaaaaaaaaaaaaa/bbbbbbbbbbbbbbbbbbb")
        << "no tail is short enough";
}

TEST(ShrinkName, counts_characters_and_cuts_none)
{
    std::string umlauts;
    for (int i = 0; i < 20; i++)
        umlauts += "\xc3\xa4";
    EXPECT_EQ(shrink_name("/" + umlauts + "/b", 23), "/" + umlauts + "/b");
    EXPECT_EQ(shrink_name("/" + umlauts + "/b", 22), "/*/b");
}

} // namespace
} // namespace tav

// Paths, ages and dates, byte counts.
#include "model/es.h"

#include <climits>
#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>

using namespace tav;

namespace {

struct Join {
    const char *dir;
    const char *name;
    const char *path;
};
class EsConstructFullpath : public testing::TestWithParam<Join> {};

TEST_P(EsConstructFullpath, Joins)
{
    std::string path = "old";
    EXPECT_EQ(es_construct_fullpath(path, GetParam().dir, GetParam().name),
              static_cast<int>(strlen(GetParam().path)));
    EXPECT_EQ(path, GetParam().path);
}

INSTANTIATE_TEST_SUITE_P(
    Es, EsConstructFullpath,
    testing::Values(Join{"/", "usr", "/usr"}, Join{"/usr/", "/bin/", "/usr//bin"},
                    Join{nullptr, nullptr, ""}, Join{"/usr", "bin", "/usr/bin"},
                    Join{"/usr", "/bin", "/usr/bin"}, Join{"/usr/", "bin", "/usr/bin"},
                    Join{"/", nullptr, "/"}, Join{nullptr, "//", "//"},
                    Join{"/usr", nullptr, "/usr"}, Join{nullptr, "bin", "bin"},
                    Join{"/", "/", "//"}, Join{"/a", "///", "/a"}, Join{"/usr//", nullptr, "/usr"},
                    Join{"", "a", "/a"}));

TEST(EsPaths, JoiningIntoItsOwnPartWorks)
{
    std::string path = "/usr";
    EXPECT_EQ(es_construct_fullpath(path, path.c_str(), "bin"), 8);
    EXPECT_EQ(path, "/usr/bin");
}

struct Change {
    const char *from;
    const char *to;
};
class EsRemoveSubdirectory : public testing::TestWithParam<Change> {};
TEST_P(EsRemoveSubdirectory, Cuts)
{
    std::string path = GetParam().from;
    EXPECT_EQ(es_remove_subdirectory(path), static_cast<int>(strlen(GetParam().to)));
    EXPECT_EQ(path, GetParam().to);
}
INSTANTIATE_TEST_SUITE_P(Es, EsRemoveSubdirectory,
                         testing::Values(Change{"/a/b", "/a"}, Change{"/a/b/", "/a"},
                                         Change{"/a", "/"}, Change{"ab", "ab"}, Change{"/", "/"},
                                         Change{"", ""}, Change{"a/b", "a"}, Change{"a/", "a/"},
                                         Change{"//", "/"}, Change{"/a//b", "/a/"},
                                         Change{"x", "x"}));

class EsStripPathname : public testing::TestWithParam<Change> {};
TEST_P(EsStripPathname, Cleans)
{
    std::string path = GetParam().from;
    es_strip_pathname(path);
    EXPECT_EQ(path, GetParam().to);
}
INSTANTIATE_TEST_SUITE_P(Es, EsStripPathname,
                         testing::Values(Change{"//", "/"}, Change{"////a", "//a"},
                                         Change{"//a", "//a"}, Change{"/a//b", "/a/b"},
                                         Change{"/a/b//", "/a/b"}, Change{"/a//b//c", "/a/b//c"},
                                         Change{"/a//b/", "/a/b/"}, Change{"", ""},
                                         Change{"/", "/"}, Change{"a", "a"}, Change{"/////", "/"},
                                         Change{"a//", "a"}, Change{"a///b", "a/b"},
                                         Change{"//////ab/", "//ab/"}, Change{"/a/", "/a"}));

time_t sNow;

// A clock that stands at noon of 2024-06-15 in UTC.
class EsTime : public testing::Test {
protected:
    void SetUp() override
    {
        setenv("TZ", "UTC0", 1);
        tzset();
        sNow = 1718452800;
        gEsClock = [] { return sNow; };
    }
    void TearDown() override
    {
        gEsClock = nullptr;
        unsetenv("TZ");
        tzset();
    }
    static std::string text(time_t age, int mode)
    {
        time_t when = sNow - age;
        std::string dst = "untouched";
        int length = es_generate_time_string(dst, &when, mode);
        EXPECT_EQ(length, static_cast<int>(dst.size()));
        return dst;
    }
};

constexpr time_t DAY = 86400;

TEST_F(EsTime, AgesInSecondsToMonthsThenTheDate)
{
    EXPECT_EQ(text(0, 0), " 0 seconds");
    EXPECT_EQ(text(119, 0), " 119 seconds");
    EXPECT_EQ(text(120, 0), " 2 minutes");
    EXPECT_EQ(text(120 * 60 - 1, 0), " 119 minutes");
    EXPECT_EQ(text(120 * 60, 0), " 2 hours");
    EXPECT_EQ(text(48 * 3600 - 1, 0), " 47 hours");
    EXPECT_EQ(text(48 * 3600, 0), " 2 days");
    EXPECT_EQ(text(59 * DAY, 0), " 59 days");
    EXPECT_EQ(text(60 * DAY, 0), " 2 months");
    EXPECT_EQ(text(355 * DAY, 0), " 11 months");
    EXPECT_EQ(text(356 * DAY, 0), " 06/25/2023");
}

TEST_F(EsTime, ATimeToComeHasTheAgeZero)
{
    EXPECT_EQ(text(-5000, 0), " 0 seconds");
    EXPECT_EQ(text(-3600, 1), " 01:00 PM today");
}

TEST_F(EsTime, RecentTimesSayTodayYesterdayWeekdayOrDate)
{
    EXPECT_EQ(text(0, 1), " 12:00 PM today");
    EXPECT_EQ(text(2 * DAY + 1, 1), " 11:59 AM Thursday");
    EXPECT_EQ(text(6 * DAY, 1), " 12:00 PM Sunday");
    EXPECT_EQ(text(6 * DAY + 1, 1), " 06/09/2024");
}

TEST_F(EsTime, YesterdayBeginsWithTenthsOfHours)
{
    // 11 o'clock, an hour ago: 11 + 10 is below 24. 10:40 is 10 + 13 = 23, 10:36 is 10 + 14 = 24.
    EXPECT_EQ(text(3600, 1), " 11:00 AM today");
    EXPECT_EQ(text(80 * 60, 1), " 10:40 AM today");
    EXPECT_EQ(text(84 * 60, 1), " 10:36 AM yesterday");
    EXPECT_EQ(text(2 * DAY, 1), " 12:00 PM yesterday");
}

TEST_F(EsTime, FullDateAndTime) { EXPECT_EQ(text(90, 2), " 06/15/2024 11:58 AM"); }

TEST_F(EsTime, AnotherModeWritesNothing)
{
    EXPECT_EQ(text(90, 3), "untouched");
    EXPECT_EQ(text(90, -1), "untouched");
}

TEST_F(EsTime, TimesBeyondAnyCalendarAreSurvived)
{
    for (time_t when : {time_t(LONG_MAX), time_t(LONG_MIN)}) {
        for (int mode : {0, 1, 2}) {
            std::string dst;
            EXPECT_GT(es_generate_time_string(dst, &when, mode), 0);
            EXPECT_EQ(dst[0], ' ');
        }
    }
    time_t last = LONG_MAX;
    std::string dst;
    es_generate_time_string(dst, &last, 2);
    EXPECT_EQ(dst, " ?");
}

struct Bytes {
    int32_t count;
    const char *text;
};
class EsByteString : public testing::TestWithParam<Bytes> {};
TEST_P(EsByteString, Text)
{
    std::string dst;
    EXPECT_EQ(es_generate_byte_string(dst, GetParam().count),
              static_cast<int>(strlen(GetParam().text)));
    EXPECT_EQ(dst, GetParam().text);
}
INSTANTIATE_TEST_SUITE_P(Es, EsByteString,
                         testing::Values(Bytes{0, "0 byte_count"}, Bytes{1023, "1023 byte_count"},
                                         Bytes{1024, "1.0KB"}, Bytes{1536, "1.512KB"},
                                         Bytes{1023999, "999.1023KB"}, Bytes{1024000, "1.0MB"},
                                         Bytes{1023999999, "999.1023999MB"},
                                         Bytes{1024000000, "1.0GB"}, Bytes{2048000000, "2.0GB"},
                                         Bytes{-5, "-5 byte_count"}));

TEST(EsBytes, BinaryUnitsWithOneDecimalAndNoGigabytes)
{
    EXPECT_STREQ(ll2str(0), "0 bytes");
    EXPECT_STREQ(ll2str(1023), "1023 bytes");
    EXPECT_STREQ(ll2str(1024), "1.0KB");
    EXPECT_STREQ(ll2str(1048575), "1024.0KB");
    EXPECT_STREQ(ll2str(1048576), "1.0MB");
    EXPECT_STREQ(ll2str(uint64_t(5) << 30), "5120.0MB");
    EXPECT_STREQ(ll2str(UINT64_MAX), "17592186044416.0MB");
}

} // namespace

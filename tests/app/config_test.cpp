// The settings record: defaults, odd files, upgrade, saving.
#include "app/config.h"

#include "testdir.h"

#include <gtest/gtest.h>
#include <memory>
#include <random>

using namespace tav;

namespace {

const uint32_t sOptionsAtStart = gOptions;

class ConfigFile : public testing::Test {
protected:
    void SetUp() override { gOptions = 0xFFFFFBFF; }
    void TearDown() override { gOptions = 0xFFFFFBFF; }
    std::unique_ptr<Config> read() const
    {
        return std::unique_ptr<Config>(x_read_config(m_dir.path().c_str(), "config.003"));
    }
    void write(const Config &record, size_t size = sizeof(Config))
    {
        m_dir.text("config.003", std::string_view(reinterpret_cast<const char *>(&record), size));
    }
    static void expect_defaults(const Config &record)
    {
        Config defaults;
        config_set_defaults(defaults);
        EXPECT_EQ(memcmp(&record, &defaults, sizeof record), 0);
    }
    TestDir m_dir;
};

TEST_F(ConfigFile, TheDefaultsAreThese)
{
    Config record;
    config_set_defaults(record);
    EXPECT_EQ(record.version, 1u);
    EXPECT_EQ(record.folders_first, 0);
    EXPECT_STREQ(record.edit_command, "ped @");
    EXPECT_STREQ(record.print_command, "lp @");
    EXPECT_STREQ(record.terminal_command, "pterm");
    EXPECT_STREQ(record.tree_font, "TextFont08");
    EXPECT_STREQ(record.list_font, "TextFont08");
    const int32_t widths[] = {125, 50, 105, 53, 53, 75};
    EXPECT_EQ(memcmp(record.column_width, widths, sizeof widths), 0);
    EXPECT_EQ(record.hotlist_width, 190);
    EXPECT_EQ(record.window_height, 410);
    EXPECT_EQ(record.window_width, 600);
    EXPECT_EQ(record.key_timeout, 1500);
    EXPECT_EQ(record.flags, 0x924u);
    EXPECT_EQ(record.save_on_exit, 1u);
    EXPECT_EQ(record.hotlist_shown, 1);
}

TEST_F(ConfigFile, ThereIsARecordBeforeAnyIsRead)
{
    ASSERT_NE(gConfig, nullptr);
    expect_defaults(*gConfig);
}

TEST_F(ConfigFile, TheOptionsBeginWithEveryBitButOne) { EXPECT_EQ(sOptionsAtStart, 0xFFFFFBFF); }

TEST_F(ConfigFile, NoFileGivesTheDefaults) { expect_defaults(*read()); }

TEST_F(ConfigFile, NoDirectoryGivesTheDefaultsAndReadsNothing)
{
    Config odd;
    config_set_defaults(odd);
    odd.window_width = 77;
    write(odd);
    ASSERT_EQ(chdir(m_dir.path().c_str()), 0);
    std::unique_ptr<Config> record(x_read_config(nullptr, "config.003"));
    expect_defaults(*record);
}

TEST_F(ConfigFile, AFileOfOneByteLessGivesTheDefaults)
{
    Config odd;
    config_set_defaults(odd);
    odd.window_width = 77;
    odd.flags = 0xFF000001;
    write(odd, 4667);
    auto record = read();
    expect_defaults(*record);
    EXPECT_EQ(record->flags, 0x924u);
}

TEST_F(ConfigFile, ALongerFileCountsByItsBeginning)
{
    Config odd;
    config_set_defaults(odd);
    odd.window_width = 77;
    std::string bytes(reinterpret_cast<const char *>(&odd), sizeof odd);
    m_dir.text("config.003", bytes + "more");
    EXPECT_EQ(read()->window_width, 77);
}

TEST_F(ConfigFile, AnOlderFileIsUpgraded)
{
    Config old;
    config_set_defaults(old);
    old.window_width = 77;
    old.flags = 1;
    write(old);
    EXPECT_EQ(read()->flags, 0x925u);
    old.flags = 0;
    write(old);
    EXPECT_EQ(read()->flags, 0x924u);
    old.flags = 0xFE000002;
    write(old);
    EXPECT_EQ(read()->flags, 0x925u);
    EXPECT_EQ(read()->window_width, 77) << "all else is kept";
    old.flags = 0xFF000002;
    write(old);
    EXPECT_EQ(read()->flags, 0xFF000002) << "a marked word is kept";
}

TEST_F(ConfigFile, HiddenDotFilesClearTwoBitsOfTheOptions)
{
    Config record;
    config_set_defaults(record);
    record.flags = 0xFF000924;
    write(record);
    read();
    EXPECT_EQ(gOptions, 0xFFFFFBFF);
    record.flags = 0xFF000925;
    write(record);
    read();
    EXPECT_EQ(gOptions, 0xFFFFFBFF & ~0x104u);
    config_apply_hide_dot(record);
    EXPECT_EQ(gOptions, 0xFFFFFBFF & ~0x104u);
    record.flags = 0x924;
    config_apply_hide_dot(record);
    EXPECT_EQ(gOptions, 0xFFFFFBFF);
}

TEST_F(ConfigFile, ARandomFileOfTheRightSizeIsKeptAsItIs)
{
    std::mt19937 random(1);
    std::string bytes(sizeof(Config), 0);
    for (char &byte : bytes)
        byte = static_cast<char>(random());
    bytes[4659] = '\xff'; // the marker: nothing to upgrade
    m_dir.text("config.003", bytes);
    auto record = read();
    EXPECT_EQ(memcmp(record.get(), bytes.data(), bytes.size()), 0);
    ASSERT_EQ(init_save_config(record.get(), m_dir.path().c_str(), "config.003"), 0);
    EXPECT_EQ(m_dir.read("config.003"), bytes);
}

TEST_F(ConfigFile, TextsWithoutAnEndAreReadWithinTheirField)
{
    Config record;
    memset(&record, 'x', sizeof record);
    EXPECT_EQ(config_text(record.edit_command), std::string(2048, 'x'));
    EXPECT_EQ(config_text(record.list_font), std::string(255, 'x'));
    config_set_text(record.terminal_command, std::string(5000, 'y'));
    EXPECT_EQ(config_text(record.terminal_command), std::string(1023, 'y'));
    config_set_text(record.tree_font, "F");
    EXPECT_EQ(std::string(record.tree_font, 255), "F" + std::string(254, '\0'));
    EXPECT_EQ(record.list_font[0], 'x');
}

TEST_F(ConfigFile, SavingMarksTheRecordOnDiskAndInMemory)
{
    Config record;
    config_set_defaults(record);
    ASSERT_EQ(init_save_config(&record, m_dir.path().c_str(), "config.003"), 0);
    EXPECT_EQ(record.flags, 0xFF000924);
    std::string bytes = m_dir.read("config.003");
    ASSERT_EQ(bytes.size(), 4668u);
    uint32_t flags = 0;
    memcpy(&flags, bytes.data() + 4656, sizeof flags);
    EXPECT_EQ(flags >> 24, 0xFFu);
    EXPECT_EQ(memcmp(bytes.data(), &record, sizeof record), 0);
    EXPECT_EQ(memcmp(read().get(), &record, sizeof record), 0);
}

TEST_F(ConfigFile, FieldsLieAtTheirOffsets)
{
    Config record;
    config_set_defaults(record);
    record.folders_first = 0x01020304;
    record.hotlist_shown = 9;
    ASSERT_EQ(init_save_config(&record, m_dir.path().c_str(), "config.003"), 0);
    std::string bytes = m_dir.read("config.003");
    int32_t word = 0;
    memcpy(&word, bytes.data() + 4, 4);
    EXPECT_EQ(word, 0x01020304);
    EXPECT_STREQ(bytes.data() + 8, "ped @");
    EXPECT_STREQ(bytes.data() + 2056, "lp @");
    EXPECT_STREQ(bytes.data() + 3080, "pterm");
    EXPECT_STREQ(bytes.data() + 4104, "TextFont08");
    EXPECT_STREQ(bytes.data() + 4359, "TextFont08");
    const std::pair<size_t, int32_t> words[] = {{4616, 125}, {4636, 75},   {4640, 190}, {4644, 410},
                                                {4648, 600}, {4652, 1500}, {4660, 1}};
    for (auto [offset, value] : words) {
        memcpy(&word, bytes.data() + offset, 4);
        EXPECT_EQ(word, value) << offset;
    }
    EXPECT_EQ(bytes.substr(4664), std::string("\x09\0\0\0", 4));
}

TEST_F(ConfigFile, SavingFailsWhereNothingCanBeWrittenAndLeavesTheRecordAlone)
{
    Config record;
    config_set_defaults(record);
    EXPECT_EQ(init_save_config(&record, m_dir.at("missing").c_str(), "config.003"), -1);
    EXPECT_EQ(record.flags, 0x924u);
    EXPECT_EQ(init_save_config(&record, nullptr, "config.003"), -1);
    EXPECT_EQ(init_save_config(nullptr, m_dir.path().c_str(), "config.003"), -1);
}

TEST_F(ConfigFile, AUnreadableFileOrADirectoryInItsPlaceGivesTheDefaults)
{
    m_dir.dir("config.003");
    expect_defaults(*read());
    m_dir.remove("config.003");
    m_dir.fifo("config.003");
    expect_defaults(*read());
}

} // namespace

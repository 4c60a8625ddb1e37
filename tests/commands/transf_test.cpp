// The packed form of a file list: what goes in comes out, and nothing hostile gets through.
#include "commands/transf.h"

#include <gmock/gmock.h>
#include <string>

using namespace tav;
using testing::ElementsAre;
using testing::StrEq;

namespace {

constexpr size_t VERSION_AT = 4, TYPE_AT = 8, COUNT_AT = 32, DIRECTORY_AT = 36;

std::string x_packed(bool cut = false)
{
    return transf_pack(transf_make("/home/u", {"a", "b c", "\xff\n&"}), cut, TransfId{'i', 'd'});
}

std::string x_with32(std::string bytes, size_t at, uint32_t value)
{
    for (int i = 0; i < 4; i++)
        bytes[at + i] = static_cast<char>(value >> (8 * i));
    return bytes;
}

// A packed form holding this one name, whatever it is.
std::string x_with_name(std::string_view name)
{
    std::string bytes = transf_pack(transf_make("/d", {"x"}), false, {});
    bytes.resize(bytes.size() - 5);
    bytes += std::string(4, '\0');
    bytes = x_with32(bytes, bytes.size() - 4, static_cast<uint32_t>(name.size()));
    return bytes + std::string(name);
}

std::string x_with_directory(std::string_view directory)
{
    std::string bytes = x_packed().substr(0, DIRECTORY_AT) + std::string(4, '\0');
    bytes = x_with32(bytes, DIRECTORY_AT, static_cast<uint32_t>(directory.size()));
    bytes += directory;
    return x_with32(bytes, COUNT_AT, 1) + std::string("\1\0\0\0n", 5);
}

int x_refused(const std::string &bytes)
{
    TransfOffer offer;
    int result = transf_unpack(bytes, offer);
    EXPECT_EQ(offer.list.count, 0);
    return result;
}

} // namespace

TEST(Transf, PackedFormComesBackWhole)
{
    TransfOffer offer;
    ASSERT_EQ(transf_unpack(x_packed(true), offer), 0);
    EXPECT_TRUE(offer.cut);
    EXPECT_EQ(offer.id, (TransfId{'i', 'd'}));
    EXPECT_EQ(offer.list.count, 3);
    EXPECT_STREQ(offer.list.directory, "/home/u");
    EXPECT_THAT(offer.list.names, ElementsAre(StrEq("a"), StrEq("b c"), StrEq("\xff\n&")));
}

TEST(Transf, LayoutIsLittleEndianWithLengthsBeforeBytes)
{
    std::string bytes = transf_pack(transf_make("/d", {"ab"}), true, TransfId{});
    std::string expected("TAVL\1\0\0\0files\0mv", 16);
    expected += std::string(16, '\0');
    expected += std::string("\1\0\0\0\2\0\0\0/d\2\0\0\0ab", 16);
    EXPECT_EQ(bytes, expected);
}

TEST(Transf, TypeFieldSaysCopyOrMove)
{
    EXPECT_EQ(x_packed(false).substr(TYPE_AT, 8), std::string("files\0cp", 8));
    EXPECT_EQ(x_packed(true).substr(TYPE_AT, 8), std::string("files\0mv", 8));
    std::string other = x_packed();
    other[TYPE_AT + 6] = 'x';
    EXPECT_EQ(x_refused(other), -1);
    std::string without_nul = x_packed();
    without_nul[TYPE_AT + 5] = ' ';
    EXPECT_EQ(x_refused(without_nul), -1);
}

TEST(Transf, NamesThatAreGoneAreLeftOut)
{
    FileListRecord list = transf_make("/d", {"a", "b", "c"});
    list.names[1] = "";
    TransfOffer offer;
    ASSERT_EQ(transf_unpack(transf_pack(list, true, {}), offer), 0);
    EXPECT_THAT(offer.list.names, ElementsAre(StrEq("a"), StrEq("c")));
    EXPECT_EQ(transf_own(list).count, 2);
}

TEST(Transf, EveryTruncationIsRefused)
{
    std::string whole = x_packed();
    for (size_t size = 0; size < whole.size(); size++)
        EXPECT_EQ(x_refused(whole.substr(0, size)), -1) << size;
    EXPECT_EQ(x_refused(whole + '\0'), -1);
}

TEST(Transf, AnotherVersionIsRefused)
{
    EXPECT_EQ(x_refused(x_with32(x_packed(), VERSION_AT, 2)), -1);
    EXPECT_EQ(x_refused(x_with32(x_packed(), VERSION_AT, 0)), -1);
}

TEST(Transf, LyingCountsAndLengthsAreRefusedWithoutTakingRoom)
{
    for (uint32_t lie : {0u, 1u, 2u, 4u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
        EXPECT_EQ(x_refused(x_with32(x_packed(), COUNT_AT, lie)), -1) << lie;
        EXPECT_EQ(x_refused(x_with32(x_packed(), DIRECTORY_AT, lie)), -1) << lie;
    }
}

TEST(Transf, ImpossibleNamesAreRefused)
{
    using namespace std::string_view_literals;
    EXPECT_EQ(x_refused(x_with_name("")), -1);
    EXPECT_EQ(x_refused(x_with_name(".")), -1);
    EXPECT_EQ(x_refused(x_with_name("..")), -1);
    EXPECT_EQ(x_refused(x_with_name("a/b")), -1);
    EXPECT_EQ(x_refused(x_with_name("../../etc/passwd")), -1);
    EXPECT_EQ(x_refused(x_with_name("a\0b"sv)), -1);
    EXPECT_EQ(x_refused(x_with_name(std::string(256, 'n'))), -1);
    TransfOffer offer;
    EXPECT_EQ(transf_unpack(x_with_name(std::string(255, 'n')), offer), 0);
    EXPECT_EQ(transf_unpack(x_with_name("...a"), offer), 0);
}

TEST(Transf, ImpossibleDirectoriesAreRefused)
{
    using namespace std::string_view_literals;
    EXPECT_EQ(x_refused(x_with_directory("")), -1);
    EXPECT_EQ(x_refused(x_with_directory("relative")), -1);
    EXPECT_EQ(x_refused(x_with_directory("/a\0b"sv)), -1);
    EXPECT_EQ(x_refused(x_with_directory("/" + std::string(TRANSF_MAX_DIRECTORY, 'd'))), -1);
    TransfOffer offer;
    EXPECT_EQ(transf_unpack(x_with_directory("/"), offer), 0);
}

TEST(Transf, TooLongAFormIsRefused)
{
    EXPECT_EQ(x_refused(x_packed() + std::string(TRANSF_MAX_BYTES, '\0')), -1);
}

TEST(Transf, OwnedRecordOutlivesItsSource)
{
    std::string directory = "/tmp/x", name = "file";
    FileListRecord borrowed;
    borrowed.count = 1;
    borrowed.directory = directory.c_str();
    borrowed.names = {name.c_str()};
    FileListRecord owned = transf_own(borrowed);
    directory = "/changed";
    name = "gone";
    EXPECT_STREQ(owned.directory, "/tmp/x");
    EXPECT_STREQ(owned.names[0], "file");
}

TEST(Transf, EveryIdIsNew) { EXPECT_NE(transf_new_id(), transf_new_id()); }

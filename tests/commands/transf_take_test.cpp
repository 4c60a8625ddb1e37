// Choosing among offered forms, and marks of cut files.
#include "commands/transf_marks.h"
#include "commands/transf_take.h"

#include <gmock/gmock.h>

using namespace tav;
using testing::ElementsAre;
using testing::StrEq;

namespace {

TransfForms x_all_forms()
{
    TransfForms forms;
    forms.own = transf_pack(transf_make("/own", {"o"}), true, TransfId{'7'});
    forms.gnome = "cut\nfile:///gnome/g";
    forms.uris = "file:///uris/u\r\n";
    forms.kde = "1";
    return forms;
}

std::string x_directory(const TransfForms &forms)
{
    TransfFiles files;
    return transf_take(forms, files) == 0 ? files.lists[0].directory : "none";
}

} // namespace

TEST(TransfTake, OwnFormComesFirst)
{
    TransfFiles files;
    ASSERT_EQ(transf_take(x_all_forms(), files), 0);
    EXPECT_STREQ(files.lists[0].directory, "/own");
    EXPECT_TRUE(files.ours);
    EXPECT_EQ(files.id, TransfId{'7'});
}

TEST(TransfTake, ThenTheGnomeFormThenTheUriList)
{
    TransfForms forms = x_all_forms();
    forms.own.clear();
    forms.kde = "0";
    EXPECT_EQ(x_directory(forms), "/gnome");
    forms.gnome.clear();
    EXPECT_EQ(x_directory(forms), "/uris");
    forms.uris.clear();
    EXPECT_EQ(x_directory(forms), "none");
}

TEST(TransfTake, AMalformedFormCountsAsMissing)
{
    TransfForms forms = x_all_forms();
    forms.own.pop_back();
    EXPECT_EQ(x_directory(forms), "/uris");
    forms.uris = "http://host/";
    EXPECT_EQ(x_directory(forms), "/gnome");
    forms.gnome = "move\nfile:///gnome/g";
    EXPECT_EQ(x_directory(forms), "none");
}

// A program that was asked for that form of its cut has nothing left to give to the next one.
TEST(TransfTake, TheGnomeFormOfAMarkedCutIsNotAskedFor)
{
    TransfForms forms = x_all_forms();
    forms.own.clear();
    std::vector<std::string> asked;
    TransfFiles files;
    auto get = [&](const char *mime, std::string &bytes) {
        asked.emplace_back(mime);
        bytes = asked.back() == TRANSF_MIME_KDE    ? std::string("1\0", 2)
                : asked.back() == TRANSF_MIME_URIS ? std::string("file:///a/b\0", 12)
                                                   : "";
        return !bytes.empty();
    };
    ASSERT_EQ(transf_take_from(get, files), 0);
    EXPECT_TRUE(files.cut);
    EXPECT_STREQ(files.lists[0].names[0], "b");
    EXPECT_THAT(asked, ElementsAre(TRANSF_MIME, TRANSF_MIME_KDE, TRANSF_MIME_URIS));
}

TEST(TransfTake, KdeMarkDecidesAndNoMarkMeansCopy)
{
    TransfForms forms;
    forms.uris = "file:///a/b\r\n";
    TransfFiles files;
    ASSERT_EQ(transf_take(forms, files), 0);
    EXPECT_FALSE(files.cut);
    forms.kde = "0";
    ASSERT_EQ(transf_take(forms, files), 0);
    EXPECT_FALSE(files.cut);
    forms.kde = "1";
    ASSERT_EQ(transf_take(forms, files), 0);
    EXPECT_TRUE(files.cut);
}

TEST(TransfTake, GnomeFormCarriesItsOwnMark)
{
    TransfForms forms;
    forms.kde = "1"; // with no URIs it marks nothing
    forms.gnome = "copy\nfile:///a/b";
    TransfFiles files;
    ASSERT_EQ(transf_take(forms, files), 0);
    EXPECT_FALSE(files.cut);
    forms.gnome = "cut\nfile:///a/b";
    ASSERT_EQ(transf_take(forms, files), 0);
    EXPECT_TRUE(files.cut);
    EXPECT_FALSE(files.ours);
}

TEST(TransfMarks, EveryFileOfTheOfferIsMarked)
{
    TransfForms forms;
    forms.gnome = "cut\nfile:///a/1\nfile:///b/2";
    TransfFiles files;
    ASSERT_EQ(transf_take(forms, files), 0);
    TransfMarks marks;
    transf_marks_set(marks, files);
    EXPECT_TRUE(transf_marks_has(marks, "/a", "1"));
    EXPECT_TRUE(transf_marks_has(marks, "/b", "2"));
    EXPECT_FALSE(transf_marks_has(marks, "/a", "2"));
    EXPECT_FALSE(transf_marks_has(marks, "/a/", "1"));
    EXPECT_EQ(marks.left, 2u);
}

TEST(TransfMarks, RemovingBlanksTheName)
{
    TransfFiles files;
    files.lists.push_back(transf_make("/a", {"1", "2"}));
    TransfMarks marks;
    transf_marks_set(marks, files);
    EXPECT_TRUE(transf_marks_remove(marks, "/a", "1"));
    EXPECT_FALSE(transf_marks_remove(marks, "/a", "1"));
    EXPECT_FALSE(transf_marks_remove(marks, "/b", "2"));
    EXPECT_FALSE(transf_marks_has(marks, "/a", "1"));
    EXPECT_THAT(files.lists[0].names, ElementsAre(StrEq(""), StrEq("2")));
    EXPECT_EQ(marks.left, 1u);
    transf_marks_clear(marks);
    EXPECT_FALSE(transf_marks_has(marks, "/a", "2"));
}

TEST(TransfMarks, RemovingATreeTakesWhatIsInAndBelowIt)
{
    TransfForms forms;
    forms.gnome = "cut\nfile:///a/1\nfile:///a/b/2\nfile:///a/b/c/3\nfile:///a/bc/4";
    TransfFiles files;
    ASSERT_EQ(transf_take(forms, files), 0);
    TransfMarks marks;
    transf_marks_set(marks, files);
    EXPECT_TRUE(transf_marks_remove_tree(marks, "/a/b"));
    EXPECT_FALSE(transf_marks_remove_tree(marks, "/a/b"));
    EXPECT_TRUE(transf_marks_has(marks, "/a", "1"));
    EXPECT_FALSE(transf_marks_has(marks, "/a/b", "2"));
    EXPECT_FALSE(transf_marks_has(marks, "/a/b/c", "3"));
    EXPECT_TRUE(transf_marks_has(marks, "/a/bc", "4"));
    EXPECT_EQ(marks.left, 2u);
}

TEST(TransfTake, FormsThatAreNotNeededAreNotAskedFor)
{
    const TransfForms forms = x_all_forms();
    std::vector<std::string> asked;
    TransfFiles files;
    auto get = [&](const char *mime, std::string &bytes) {
        asked.emplace_back(mime);
        bytes = forms.gnome;
        return asked.back() == TRANSF_MIME_GNOME;
    };
    ASSERT_EQ(transf_take_from(get, files), 0);
    EXPECT_THAT(asked, ElementsAre(TRANSF_MIME, TRANSF_MIME_KDE, TRANSF_MIME_GNOME));
}

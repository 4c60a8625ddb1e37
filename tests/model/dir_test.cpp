// Reading real directories: what is listed, with which status, and how entries are reused.
#include "model/dir.h"

#include "testdir.h"

#include <gtest/gtest.h>

using namespace tav;

namespace {

TEST(DirRead, AnEmptyDirectoryYieldsNothing)
{
    TestDir dir;
    DirListing listing = {};
    listing.path = dir.path();
    listing.has_path = true;
    listing.filespec = "*";
    EXPECT_EQ(dir_read(listing, dir_cmp_name, 1), 0);
    EXPECT_EQ(listing.count, 0);
    EXPECT_EQ(listing.total, 0u);
    dir_release(listing);
}

} // namespace

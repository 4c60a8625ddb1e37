// What one row of the list says: its texts, its image, and which row shows which entry.
#pragma once

#include <cstdint>
#include <string>

namespace tav {

constexpr int FL_COLUMNS =
    7; // name, size, date, owner, group, permissions, link; they count from 1
constexpr int FL_COLUMN_NAME = 1;
constexpr int FL_COLUMN_SIZE = 2;
constexpr int FL_COLUMN_LINK = 7;

// Images of a row, in the order in which fl_setup adds them.
enum FlImage {
    FL_IMAGE_FOLDER,
    FL_IMAGE_FILE,
    FL_IMAGE_EXEC, // the owner may execute it
    FL_IMAGE_LINKED_FOLDER,
    FL_IMAGE_LINKED_FILE,
    FL_IMAGE_LINKED_EXEC,
    FL_IMAGE_PARENT, // the ".." row
    FL_IMAGE_BROKEN, // a link to nothing
    FL_IMAGE_CUT,    // waits on the clipboard to be moved; overrides the others
    FL_IMAGES
};

// Decides whether the ".." row is shown, for the path and the options as they are now. Kept until
// the next call, so that rows do not move between two rebuilds.
void fl_row_latch();

int fl_row_count(); // rows shown, ".." included
int fl_row_index(
    int row); // index of the entry that a row shows; DIR_NONE when there is no such row
int fl_row_of_index(int index); // row of an index, or -1

// The whole text of a row, columns separated by tabs: name, size, date (which begins with a blank),
// owner, group, permissions and, for a link, its target. Bytes, as the file system has them; empty
// for no entry.
std::string fl_row_text(int index);

// The text of one column; empty for a bad column or no entry.
std::string fl_row_column(int index, int column);

int fl_row_image(int index);              // FlImage; the ".." row for anything that is no entry
const char *fl_row_image_name(int image); // name in the resources, null for a bad image

// Decimal text with "," every three digits from the right, in a buffer that lasts until the next
// call.
const char *cvt2c(uint32_t n);

} // namespace tav

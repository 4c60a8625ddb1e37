// What one row of the list says. Nothing is kept: a text is made when a row is painted, so a
// million entries cost no more than the rows that fit into the window.
#include "views/fl_row.h"

#include "app/config.h"
#include "model/dir.h"
#include "model/es.h"
#include "views/fl.h"

#include <cstring>

namespace tav {

namespace {

bool sParentRow = false; // the first row is ".."

const char *const sImageNames[FL_IMAGES] = {
    "closed_folder",  "file",        "exec",   "linked_folder",
    "linked_file",    "linked_exec", "parent", "image_broken_link",
    "image_file_cut",
};

const DirEntry *x_entry(int index)
{
    return index >= 0 && index < gDir.count ? gDir.entries[static_cast<size_t>(index)] : nullptr;
}

std::string x_permissions(const DirEntry &entry)
{
    std::string text(11, ' ');
    for (int part = 1; part <= 3; ++part)
        dir_get_permissions(entry.stat.st_mode, &text[static_cast<size_t>(part - 1) * 4], part);
    return text;
}

std::string x_date(const DirEntry &entry)
{
    std::string text;
    const time_t time = entry.stat.st_mtime;
    es_generate_time_string(text, &time, 2);
    return text;
}

std::string x_owner(const DirEntry &entry)
{
    char name[DIR_NAME_SIZE];
    dir_get_username(entry.stat.st_uid, name);
    return name;
}

std::string x_group(const DirEntry &entry)
{
    char name[DIR_NAME_SIZE];
    dir_get_groupname(entry.stat.st_gid, name);
    return name;
}

bool x_is_link(const DirEntry &entry) { return entry.flags & DIR_LINK; }

std::string x_column(const DirEntry &entry, int column)
{
    switch (column) {
    case FL_COLUMN_NAME:
        return entry.name;
    case FL_COLUMN_SIZE:
        return cvt2c(dir_size32(entry));
    case 3:
        return x_date(entry);
    case 4:
        return x_owner(entry);
    case 5:
        return x_group(entry);
    case 6:
        return x_permissions(entry);
    case FL_COLUMN_LINK:
        return x_is_link(entry) && entry.link ? entry.link : "";
    default:
        return {};
    }
}

bool x_is_cut(const DirEntry &entry)
{
    return gFlHooks.is_cut && (!gFlHooks.cut_any || gFlHooks.cut_any()) &&
           gFlHooks.is_cut(gDir.path, entry.name);
}

} // namespace

void fl_row_latch()
{
    sParentRow = (gOptions & OPTION_PARENT_ROW) && gDir.has_path && gDir.path != "/";
}

int fl_row_count() { return gDir.count + (sParentRow ? 1 : 0); }

int fl_row_index(int row)
{
    if (row < 0 || row >= fl_row_count())
        return DIR_NONE;
    return sParentRow ? row - 1 : row;
}

int fl_row_of_index(int index)
{
    if (index == DIR_PARENT)
        return sParentRow ? 0 : -1;
    if (index < 0 || index >= gDir.count)
        return -1;
    return sParentRow ? index + 1 : index;
}

std::string fl_row_text(int index)
{
    if (index == DIR_PARENT)
        return "..";
    const DirEntry *entry = x_entry(index);
    if (!entry)
        return {};
    std::string text = entry->name;
    const int last = x_is_link(*entry) ? FL_COLUMN_LINK : FL_COLUMN_LINK - 1;
    for (int column = FL_COLUMN_SIZE; column <= last; ++column)
        text.append(1, '\t').append(x_column(*entry, column));
    return text;
}

std::string fl_row_column(int index, int column)
{
    if (index == DIR_PARENT)
        return column == FL_COLUMN_NAME ? ".." : "";
    const DirEntry *entry = x_entry(index);
    return entry ? x_column(*entry, column) : std::string();
}

int fl_row_image(int index)
{
    const DirEntry *entry = x_entry(index);
    if (!entry)
        return FL_IMAGE_PARENT;
    if (x_is_cut(*entry))
        return FL_IMAGE_CUT;
    if (entry->flags & DIR_BROKEN)
        return FL_IMAGE_BROKEN;
    const int kind = dir_is_directory(*entry)        ? FL_IMAGE_FOLDER
                     : entry->stat.st_mode & S_IXUSR ? FL_IMAGE_EXEC
                                                     : FL_IMAGE_FILE;
    return x_is_link(*entry) ? kind + FL_IMAGE_LINKED_FOLDER : kind;
}

const char *fl_row_image_name(int image)
{
    return image >= 0 && image < FL_IMAGES ? sImageNames[image] : nullptr;
}

const char *cvt2c(uint32_t n)
{
    static char sText[16];
    char *end = sText + sizeof sText - 1;
    *end = '\0';
    int digits = 0;
    do {
        if (digits && digits % 3 == 0)
            *--end = ',';
        *--end = static_cast<char>('0' + n % 10);
        n /= 10;
        ++digits;
    } while (n);
    return end;
}

} // namespace tav

// Sorting by a column of the header.
#include "views/fl_sort.h"

#include "views/fl.h"
#include "views/fl_header.h"
#include "views/fl_read.h"
#include "views/fl_view.h"

namespace tav {

namespace {

const DirCompare sCompares[FL_COLUMNS] = {
    dir_cmp_name,  dir_cmp_size,        dir_cmp_date, dir_cmp_user,
    dir_cmp_group, dir_cmp_permissions, dir_cmp_link,
};

int sSortColumn = FL_COLUMN_NAME;
DirCompare sSortFunction = dir_cmp_name;
int sSortOrder = 1; // 1 ascending, 0 descending

const DirEntry *x_current_entry()
{
    const bool entry = gDir.current >= 0 && gDir.current < gDir.count;
    return entry ? gDir.entries[static_cast<size_t>(gDir.current)] : nullptr;
}

int x_index_of(const DirEntry *entry)
{
    for (int i = 0; i < gDir.count; ++i)
        if (gDir.entries[static_cast<size_t>(i)] == entry)
            return i;
    return DIR_NONE;
}

// Sorts; the current entry stays current wherever it goes.
void x_sort()
{
    const DirEntry *current = x_current_entry();
    if (current)
        fl_set_current(DIR_NONE); // or the flag would be sought where the entry stood before
    fl_read_sort();
    if (current)
        fl_set_current(x_index_of(current));
}

} // namespace

DirCompare fl_sort_function() { return sSortFunction; }
int fl_sort_order() { return sSortOrder; }
int fl_sort_column() { return sSortColumn; }

void fl_sort_again()
{
    x_sort();
    fl_update();
    fl_refresh_due();
}

void show_sort_method()
{
    if (FlView *view = fl_view())
        view->header()->show_sort(sSortColumn, sSortOrder);
}

void fl_sort_cb(int column)
{
    if (column < 1 || column > FL_COLUMNS || fl_is_reading())
        return;
    if (column == sSortColumn)
        sSortOrder = !sSortOrder;
    sSortColumn = column;
    sSortFunction = sCompares[column - 1];
    show_sort_method();
    fl_sort_again();
    if (FlView *view = fl_view())
        view->setFocus(Qt::OtherFocusReason);
}

void fl_sort_reset()
{
    sSortColumn = FL_COLUMN_NAME;
    sSortFunction = dir_cmp_name;
    sSortOrder = 1;
    show_sort_method();
}

} // namespace tav

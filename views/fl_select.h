// The selection: a flag in each entry, with two counts in gDir. Ranges remember what they covered,
// so that pulling one up and down costs only the rows that change.
#pragma once

namespace tav {

// Begins a range at an index (gDir.count: behind the last row). keep: what is selected already
// stays, and comes back where the range leaves it again; else all is unselected. set: what the
// range makes of an entry, selected or not.
void fl_select_range_begin(int anchor, bool keep, bool set);
void fl_select_range_to(int index); // the range covers anchor to index from now on
void fl_select_range_end();

int fl_select_anchor(); // where the next Shift begins; DIR_NONE when nowhere
void fl_select_set_anchor(int index);

// Makes an entry the only one that is selected.
void fl_select_only(int index);

} // namespace tav

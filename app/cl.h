// Input histories: what was typed into a combo box, most recent first, at most 20 texts each, kept
// in small text files. Main thread only.
#pragma once

#include <string>

namespace tav {

constexpr int CL_SIZE = 20;
constexpr unsigned CL_CHANGED = 0x1; // the history changed since it was last shown

// A ring of texts: entry k (0 the most recent) is items[(head + k) % CL_SIZE].
struct ClHistory {
    int head;
    std::string items[CL_SIZE];
    int count;
    unsigned flags; // CL_CHANGED
};

// What the histories need of a combo box; positions count from 1. Filled in by platform/combo.
struct ClBox {
    void *widget;
    void (*clear)(void *widget);
    void (*insert)(void *widget, const std::string *texts, int count, int position); // 0: append
    int (*count)(void *widget);
    void (*select)(void *widget, int position);
};

extern ClHistory *gPathList;    // "goto.001"
extern ClHistory *gSpecList;    // "fspec.001"
extern ClHistory *gWithList;    // "with.001", never written
extern ClHistory *gCopyList;    // "copy.001", never written
extern ClHistory *gPatternList; // "pattern.001"

// The history in dir/name, empty when it cannot be read or either is null. Never null; cl_destroy
// frees.
ClHistory *cl_read(const char *dir, const char *name);

// Replaces dir/name by the history. Says nothing when that fails.
void cl_save(const ClHistory *list, const char *dir, const char *name);

void cl_destroy(ClHistory *list);

// Makes text the most recent entry. A text that is the most recent already changes nothing.
void cl_add(ClHistory *list, const char *text);

// Entry n counting from 1 for the most recent, or null.
const char *cl_get(const ClHistory *list, int n);

// Refills a combo box when the history changed. 1 when it touched the box, else 0.
int cl_apply(ClHistory *list, const ClBox &box);

// Selects item index (from 1) of a combo box, but only below its number of items.
void cl_text_select(const ClBox &box, int index);

// The part of text behind a web prefix, or null when it has none.
const char *cl_is_web_address(const char *text);

// The most recent entry that begins with text, web prefixes left out on both sides; null when none.
const char *cl_find_pattern(const ClHistory *list, const char *text);

// The five histories as a whole; a null dir reads and writes nothing.
void init_read_cboxs(const char *dir);
void init_save_cboxs(const char *dir);
void init_destroy_cboxs();

} // namespace tav

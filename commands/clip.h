// The clipboard as far as it holds files. It is read when it changes, never when it is needed: what
// was read last is kept here, so that no paste, menu or repaint waits for another program. Main
// thread only.
#pragma once

#include "commands/transf_take.h"

#include <QString>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace tav {

// How long names that are gone are gathered before the clipboard gets the rest of a cut.
constexpr int CLIP_GATHER_MS = 200;

// Begins to follow the clipboard; reads what it holds. Once, when the application exists.
void clip_setup();

// Puts a list there, which must own its texts; everybody's marks follow.
void clip_put(std::shared_ptr<const FileListRecord> list, bool cut);

// The files on the clipboard, null when it holds none. Good until the main loop runs again.
const TransfFiles *clip_files();

// What became of the clipboard that somebody asked about.
enum class ClipAnswer {
    known,   // clip_files tells
    changed, // something else was put there before it was known
    silent,  // the program that owns it does not answer
};
using ClipWaiter = std::function<void(ClipAnswer answer)>;

// Calls waiter as soon as what was on the clipboard at the key or click that is being dealt with is
// known: at once, or when the reading that is under way ends, or when it is gone. One waits at a
// time.
void clip_when_known(ClipWaiter waiter);

// Called when cut marks in the directory came or went.
void clip_set_notify(void (*notify)());

// True when the clipboard has an entry of the type ("files") with a length.
bool em_check_clipboard_for_type(const char *type);

void file_get_cut_files(); // makes the marks those of the last cut found on the clipboard
bool file_is_cut(const std::string &directory, std::string_view name);
bool file_any_cut(const std::string &directory); // any mark in the directory

// Takes one file out of the cut, with what was cut below it: 1, or 0 when nothing was. The
// clipboard gets the rest a little later, gathered, and only while it still holds that cut.
int file_uncut(const char *directory, const char *name);

} // namespace tav

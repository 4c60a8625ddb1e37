// File lists as other programs put them on the clipboard and into drags: lists of file URIs with
// and without a mark for cut, and plain text. Percent-encoding is made from the bytes of a name.
// Knows no Qt.
#pragma once

#include "commands/transf.h"

#include <string>
#include <string_view>
#include <vector>

namespace tav {

constexpr size_t URI_MAX_BYTES = 64u << 20; // a longer text is refused
constexpr size_t URI_MAX_COUNT = 1u << 20;  // so are more files
constexpr size_t URI_MAX_PATH = 1u << 16;   // and a longer path, alone

// Files from anywhere: one owned record per directory, in the order in which they first came.
struct UriFiles {
    std::vector<FileListRecord> groups;
    size_t refused = 0; // lines that named no file of this machine
};

// The path with every byte but letters, digits and "-._~/" as "%XX".
std::string uri_encode(std::string_view path);

// The bytes behind an encoded text. 0, or -1 when it is malformed or holds %00 or an encoded "/".
int uri_decode(std::string_view text, std::string &out);

// "file://" and the encoded path.
std::string uri_from_path(std::string_view path);

// The absolute path of a local file URI, trailing "/" dropped: "file:/p", "file:///p",
// "file://HOST/p" with "localhost" or this machine's name. 0, or -1 for anything else.
int uri_to_path(std::string_view uri, std::string &path);

// Whether the host in a URI is this machine. Empty is.
bool uri_is_local_host(std::string_view host);

std::string uri_make_list(const FileListRecord &list);            // text/uri-list, CRLF
std::string uri_make_gnome(const FileListRecord &list, bool cut); // x-special/gnome-copied-files
std::string uri_make_kde_mark(bool cut);                          // application/x-kde-cutselection
std::string uri_make_plain(const FileListRecord &list);           // the paths, one a line

// Takes a text apart into files by directory; a file named twice counts once, lines that are no
// local file are counted as refused, comments skipped. 0, or -1 (files untouched) when no file is
// left or a limit is passed.
int uri_parse_list(std::string_view text, UriFiles &files);

// The same with the first line telling copy from cut; -1 also when it says neither.
int uri_parse_gnome(std::string_view text, bool &cut, UriFiles &files);

// Whether the mark says cut.
bool uri_parse_kde_mark(std::string_view text);

} // namespace tav

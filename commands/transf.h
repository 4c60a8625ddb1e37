// File lists that travel: the record that the clipboard, drags, destination menus and jobs carry,
// and its packed form. Knows no Qt. The packed form, all numbers little-endian:
//
//   4 bytes  "TAVL"                      4 bytes  version, 1
//   8 bytes  "files", NUL, "cp" or "mv"  16 bytes id of the offer
//   4 bytes  count of names              4 bytes  length of the directory, then its bytes
//   count times: 4 bytes length, then the bytes of the name; nothing follows the last one
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tav {

// Files of one directory. Borrowed from the listing it lasts only for the moment; owned it lasts.
struct FileListRecord {
    int32_t count = 0;               // how many names; an empty name is one that is gone
    const char *directory = "";      // where the files are, absolute
    std::vector<const char *> names; // count single names, in list order
    std::unique_ptr<char[]> storage; // what directory and names point into; null: borrowed
};

// The type field: bytes 6 and 7 tell a cut ("mv") from a copy ("cp").
using TransfType = std::array<char, 8>;
constexpr TransfType TRANSF_COPY = {'f', 'i', 'l', 'e', 's', '\0', 'c', 'p'};
constexpr TransfType TRANSF_MOVE = {'f', 'i', 'l', 'e', 's', '\0', 'm', 'v'};

// Tells one offer from any other, on this machine and others.
using TransfId = std::array<char, 16>;

constexpr uint32_t TRANSF_VERSION = 1;
constexpr size_t TRANSF_MAX_BYTES = 64u << 20;    // a longer packed form is refused
constexpr size_t TRANSF_MAX_DIRECTORY = 1u << 16; // bytes of a directory
constexpr size_t TRANSF_MAX_NAME = 255;           // bytes of a name

// A packed form taken apart.
struct TransfOffer {
    bool cut = false;
    TransfId id{};
    FileListRecord list; // owned, without names that are gone
};

// A record that owns copies of the directory and the names.
FileListRecord transf_make(std::string_view directory, const std::vector<std::string_view> &names);

// A record that owns copies of what another one holds, names that are gone left out.
FileListRecord transf_own(const FileListRecord &list);

// The packed form of the list, names that are gone left out.
std::string transf_pack(const FileListRecord &list, bool cut, const TransfId &id);

// Takes a packed form apart. 0, or -1 (offer untouched) when it is no such form, another version,
// lies about a length, or holds what is no directory or no name.
int transf_unpack(std::string_view bytes, TransfOffer &offer);

// A new id, from the system's random source.
TransfId transf_new_id();

bool transf_is_name(std::string_view name);           // one single name that can exist
bool transf_is_directory(std::string_view directory); // an absolute path

// The selection last packed was exactly one entry and that a directory.
extern bool one_dir_packed;

// The selection of the shown directory, in list order: borrowed, so it lasts until the next read.
// Sets one_dir_packed.
FileListRecord fl_pack_transf();

// Forgets the list.
void fl_free_transf(FileListRecord &list);

} // namespace tav

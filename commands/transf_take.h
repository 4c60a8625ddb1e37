// What arrives from a clipboard or a drag, in whatever form it was offered. Knows no Qt.
#pragma once

#include "commands/transf.h"

#include <functional>
#include <string>
#include <vector>

namespace tav {

constexpr const char *TRANSF_MIME = "application/x-tav-files"; // the packed form
constexpr const char *TRANSF_MIME_GNOME = "x-special/gnome-copied-files";
constexpr const char *TRANSF_MIME_URIS = "text/uri-list";
constexpr const char *TRANSF_MIME_KDE = "application/x-kde-cutselection";
constexpr const char *TRANSF_MIME_TEXT = "text/plain";

// The bytes of the forms that were there; empty when a form was not.
struct TransfForms {
    std::string own;   // TRANSF_MIME
    std::string gnome; // TRANSF_MIME_GNOME
    std::string uris;  // TRANSF_MIME_URIS
    std::string kde;   // TRANSF_MIME_KDE
};

// Files out of the best form.
struct TransfFiles {
    bool cut = false;  // they are to be moved
    bool ours = false; // out of the packed form: id says which offer
    TransfId id{};
    std::vector<FileListRecord> lists; // one per directory, owned; never empty after success
};

// Gets the bytes of one form; false when it is not offered or does not come.
using TransfGet = std::function<bool(const char *mime, std::string &bytes)>;

// Takes the packed form, else the URI list if the KDE mark beside it says cut, else the GNOME form,
// else the URI list; a form that is malformed counts as missing, and one that is not needed is not
// asked for. 0, or -1 (files untouched) when there is no file.
int transf_take_from(const TransfGet &get, TransfFiles &files);

// The same for forms that are there already.
int transf_take(const TransfForms &forms, TransfFiles &files);

} // namespace tav

// Key bindings: sections bind (modifier state, key cap) pairs to the actions of app/ac.h, can be
// saved to and loaded from a text file, and dispatch a widget's keys. Knows no Qt; main thread
// only.
//
// The file: "[section]" heads a section, "'action' MODIFIERS CAP" binds a key in it, an empty line
// ends it.
#pragma once

#include <cstdint>
#include <forward_list>
#include <string>

class QWidget;

namespace tav {

struct AcAction;
struct KbMod;

constexpr uint32_t KB_DEFAULT = 0x1; // KbCap::flags: the action's default in this section

// Bits of KbKeyEvent::flags that decide whether a key is dispatched.
constexpr uint32_t KB_KEY_DOWN = 0x1;   // pressed, not released
constexpr uint32_t KB_KEY_REPEAT = 0x2; // pressed by the repetition of a held key
constexpr uint32_t KB_CAP_VALID = 0x80; // cap says something

// A bound key cap.
struct KbCap {
    uint32_t cap;     // key code
    uint32_t flags;   // KB_DEFAULT
    AcAction *action; // never null
    KbMod *mod;       // the entry that this one belongs to
};

// The key caps bound with one modifier state; the newest stands in front, here as in the other
// lists.
struct KbMod {
    uint32_t mods; // every modifier and lock bit counts
    std::forward_list<KbCap> caps;
};

struct KbSection {
    std::string name;
    std::forward_list<KbMod> mods;
};

// What a raw key event says.
struct KbKeyEvent {
    uint32_t mods;
    uint32_t flags; // KB_KEY_DOWN, KB_KEY_REPEAT, KB_CAP_VALID
    uint32_t cap;
};

extern std::forward_list<KbSection> gSections;

// Binds a key to an action; makes what is missing. The first key bound to an action in a section
// becomes its default; a key that is bound again keeps the mark it had. Always 0.
int kb_attach(const char *action, const char *section, uint32_t mods, uint32_t cap);

// Makes a bound key its action's default. 0, or -1 when the action, section, modifiers or key are
// unknown.
int kb_set_default(const char *action, const char *section, uint32_t mods, uint32_t cap);

// Read and replace the file dir/name; with a null dir the name is the path. 0, or -1 when the file
// cannot be opened or both are null. A line of the file is read in pieces of 31 characters: longer
// names do not come back.
int kb_load(const char *dir, const char *name);
int kb_save(const char *dir, const char *name);

// The accelerator text of the action's default key: buffer, unchanged (menus take theirs from the
// menu tables); null when the action has no default in the section.
char *kb_get_accel_text(const char *action, const char *section, char *buffer);

// Calls what is bound to a fresh key press on a linked widget; info is a KbKeyEvent. 1 when the key
// was bound, else 0 and the event goes on.
int kb_process(QWidget *widget, void *data, void *info);

// First matches, null when there is none.
KbSection *x_get_section(const char *name);
KbMod *x_get_mod(KbSection &section, uint32_t mods);
KbCap *x_get_cap(KbMod &mod, uint32_t cap);

// The section of the name, made when there is none.
KbSection &kb_need_section(const char *name);

} // namespace tav

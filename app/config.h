// The settings record: one fixed block of bytes in "config.003", read at start and written at exit.
// The main thread owns it; the engine gets copies.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace tav {

// Bits of Config::flags. Each group of choices has exactly one bit set.
constexpr uint32_t CONFIG_HIDE_DOT = 0x1;
constexpr uint32_t CONFIG_OVERWRITE = 0x2;
constexpr uint32_t CONFIG_RM1_PROMPT = 0x4;
constexpr uint32_t CONFIG_RM1_PROMPT_NOWR = 0x8;
constexpr uint32_t CONFIG_RM1_NO_PROMPT = 0x10;
constexpr uint32_t CONFIG_SYM_PROMPT = 0x20;
constexpr uint32_t CONFIG_SYM_SYMLINKS = 0x40;
constexpr uint32_t CONFIG_SYM_FILES = 0x80;
constexpr uint32_t CONFIG_RM_PROMPT = 0x100;
constexpr uint32_t CONFIG_RM_NO_PROMPT = 0x200;
constexpr uint32_t CONFIG_RM_I_PROMPT = 0x400;
constexpr uint32_t CONFIG_RM_I_PROMPT_NOWR = 0x800;
constexpr uint32_t CONFIG_RM_I_NO_PROMPT = 0x1000;
constexpr uint32_t CONFIG_MARKER = 0xFF000000; // the top byte of every saved word
constexpr uint32_t CONFIG_DEFAULT_FLAGS = 0x924;

constexpr int CONFIG_COLUMNS = 6; // columns whose width is kept

// The record as it lies on the disk, in this machine's byte order. Texts are terminated and padded;
// lengths are reference pixels (see platform/lengths.h).
struct Config {
    uint32_t version;                     // 1; nothing reads it
    int32_t folders_first;                // non-zero: directories sort before files
    char edit_command[2048];              // "ped @"
    char print_command[1024];             // "lp @"
    char terminal_command[1024];          // "pterm"
    char tree_font[255];                  // font of the hotlist panel
    char list_font[255];                  // font of the file list
    char padding1[2];                     // 0
    int32_t column_width[CONFIG_COLUMNS]; // columns 1 to 6 of the file list
    int32_t hotlist_width; // of the hotlist panel; of the three metric words the low 16 bits count
    int32_t window_height;
    int32_t window_width;
    int32_t key_timeout;   // milliseconds until typed keys are forgotten; 0 never
    uint32_t flags;        // CONFIG_*
    uint32_t save_on_exit; // non-zero: the record is written when the main window closes
    uint8_t hotlist_shown; // 0: the hotlist panel is hidden at start
    char padding2[3];      // 0
};
static_assert(sizeof(Config) == 4668);
static_assert(offsetof(Config, folders_first) == 4);
static_assert(offsetof(Config, edit_command) == 8);
static_assert(offsetof(Config, print_command) == 2056);
static_assert(offsetof(Config, terminal_command) == 3080);
static_assert(offsetof(Config, tree_font) == 4104);
static_assert(offsetof(Config, list_font) == 4359);
static_assert(offsetof(Config, column_width) == 4616);
static_assert(offsetof(Config, hotlist_width) == 4640);
static_assert(offsetof(Config, window_height) == 4644);
static_assert(offsetof(Config, window_width) == 4648);
static_assert(offsetof(Config, key_timeout) == 4652);
static_assert(offsetof(Config, flags) == 4656);
static_assert(offsetof(Config, save_on_exit) == 4660);
static_assert(offsetof(Config, hotlist_shown) == 4664);

// Bits of gOptions.
constexpr uint32_t OPTION_MENU_BUILD = 0x1;      // cascades of directories are built ahead
constexpr uint32_t OPTION_MENU_DOT = 0x4;        // menus built from directories list dot entries
constexpr uint32_t OPTION_COMPLETE = 0x10;       // the path box completes what is typed
constexpr uint32_t OPTION_COLOUR = 0x20;         // the path box colours web addresses
constexpr uint32_t OPTION_DOT_COMPANION = 0x100; // kept in step with OPTION_MENU_DOT
constexpr uint32_t OPTION_TREE_DOT = 0x800;      // the tree lists dot entries
constexpr uint32_t OPTION_TREE_SORTED = 0x1000;  // levels of the tree are in name order
constexpr uint32_t OPTION_PARENT_ROW = 0x2000;   // the file list begins with ".."

// A text of the record; safe when a strange file left it without an end.
template <size_t Size>
std::string config_text(const char (&field)[Size])
{
    return std::string(field, strnlen(field, Size));
}

// Puts a text into the record, cut to what fits, ended and padded.
template <size_t Size>
void config_set_text(char (&field)[Size], std::string_view text)
{
    memset(field, 0, Size);
    memcpy(field, text.data(), text.size() < Size ? text.size() : Size - 1);
}

extern Config *gConfig;   // never null: the defaults before start-up has read the file
extern uint32_t gOptions; // view options of this run; starts with every bit set but 0x400

// Fills a record with the defaults, flags included (CONFIG_DEFAULT_FLAGS, without the marker).
void config_set_defaults(Config &record);

// Brings the two dot-file bits of gOptions into step with CONFIG_HIDE_DOT.
void config_apply_hide_dot(const Config &record);

// Reads the record dir/name; defaults when there is none (a null dir too) or it is short. Upgrades
// older flags and takes the two dot-file bits of gOptions along. Never null; the caller owns it
// (delete).
Config *x_read_config(const char *dir, const char *name);

// Replaces dir/name by the record, after setting the marker in it. 0, or -1 when it cannot be
// written.
int init_save_config(Config *record, const char *dir, const char *name);

} // namespace tav

// The settings record: defaults, reading, upgrading, writing. What a file holds is kept as it is,
// however odd; those who use a value take care of its range.
#include "app/config.h"

#include "model/es.h"
#include "platform/replace_file.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace tav {

namespace {

constexpr uint32_t START_OPTIONS = ~0x400u;
constexpr uint32_t FLAGS_DOTS_HIDDEN = 0x925; // what an older file with hidden dot files becomes

Config x_defaults()
{
    Config record;
    config_set_defaults(record);
    return record;
}
Config sDefaults = x_defaults();

// Reads one whole record. False when there is none.
bool x_read_record(const char *path, Config &record)
{
    int fd = open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (fd < 0)
        return false;
    char *at = reinterpret_cast<char *>(&record);
    size_t missing = sizeof record;
    while (missing > 0) {
        ssize_t size = read(fd, at, missing);
        if (size < 0 && errno == EINTR)
            continue;
        if (size <= 0)
            break;
        at += size;
        missing -= static_cast<size_t>(size);
    }
    close(fd);
    return missing == 0;
}

} // namespace

Config *gConfig = &sDefaults;
uint32_t gOptions = START_OPTIONS;

void config_set_defaults(Config &record)
{
    memset(&record, 0, sizeof record);
    record.version = 1;
    config_set_text(record.edit_command, "ped @");
    config_set_text(record.print_command, "lp @");
    config_set_text(record.terminal_command, "pterm");
    config_set_text(record.tree_font, "TextFont08");
    config_set_text(record.list_font, "TextFont08");
    constexpr int32_t WIDTHS[CONFIG_COLUMNS] = {125, 50, 105, 53, 53, 75};
    memcpy(record.column_width, WIDTHS, sizeof WIDTHS);
    record.hotlist_width = 190;
    record.window_height = 410;
    record.window_width = 600;
    record.key_timeout = 1500;
    record.flags = CONFIG_DEFAULT_FLAGS;
    record.save_on_exit = 1;
    record.hotlist_shown = 1;
}

void config_apply_hide_dot(const Config &record)
{
    if (record.flags & CONFIG_HIDE_DOT)
        gOptions &= ~(OPTION_MENU_DOT | OPTION_DOT_COMPANION);
    else
        gOptions |= OPTION_MENU_DOT | OPTION_DOT_COMPANION;
}

Config *x_read_config(const char *dir, const char *name)
{
    Config *record = new Config;
    std::string path;
    bool found = false;
    if (dir && name) {
        es_construct_fullpath(path, dir, name);
        found = x_read_record(path.c_str(), *record);
    }
    if (!found) {
        config_set_defaults(*record);
        record->flags = 0; // for the upgrade below, as if an old file held nothing
    }
    if ((record->flags & CONFIG_MARKER) != CONFIG_MARKER)
        record->flags = record->flags == 0 ? CONFIG_DEFAULT_FLAGS : FLAGS_DOTS_HIDDEN;
    if (record->flags & CONFIG_HIDE_DOT)
        config_apply_hide_dot(*record);
    return record;
}

int init_save_config(Config *record, const char *dir, const char *name)
{
    if (!record || !dir || !name) {
        errno = ENOENT;
        return -1;
    }
    std::string path;
    es_construct_fullpath(path, dir, name);
    Config marked = *record;
    marked.flags |= CONFIG_MARKER;
    std::string_view bytes(reinterpret_cast<const char *>(&marked), sizeof marked);
    if (replace_file_write(path.c_str(), bytes) != 0)
        return -1;
    record->flags = marked.flags;
    return 0;
}

} // namespace tav

// Names of users and groups, kept in two bounded rings so that drawing and sorting need not ask the
// system's databases again and again. The newest name is found first, the oldest goes when a ring
// is full.
#include "model/dir.h"

#include <cstdio>
#include <cstring>
#include <grp.h>
#include <pwd.h>

namespace tav {

namespace {

constexpr int USERS = 256;
constexpr int GROUPS = 64;

struct Record {
    uint32_t id;
    char name[DIR_NAME_SIZE];
};

// A ring: the newest record stands at head, the older ones follow, modulo capacity.
struct Cache {
    Record *records;
    int count;
    int head;
    int capacity;
};

Record sUserRecords[USERS];
Record sGroupRecords[GROUPS];
Cache sUserCache = {sUserRecords, 0, 0, USERS};
Cache sGroupCache = {sGroupRecords, 0, 0, GROUPS};

const char *x_system_user(uid_t uid)
{
    const passwd *found = getpwuid(uid);
    return found ? found->pw_name : nullptr;
}

const char *x_system_group(gid_t gid)
{
    const group *found = getgrgid(gid);
    return found ? found->gr_name : nullptr;
}

Record *x_lookup(Cache &cache, uint32_t id)
{
    for (int i = 0; i < cache.count; i++) {
        Record *record = &cache.records[(cache.head + i) % cache.capacity];
        if (record->id == id)
            return record;
    }
    return nullptr;
}

void x_add(Cache &cache, uint32_t id, const char (&name)[DIR_NAME_SIZE])
{
    // An id that is there but was no hit has an empty name; the newest record gets the text, meant
    // so.
    if (!x_lookup(cache, id)) {
        if (cache.count > 0)
            cache.head = (cache.head + cache.capacity - 1) % cache.capacity;
        if (cache.count < cache.capacity)
            cache.count++;
        cache.records[cache.head].id = id;
    }
    memcpy(cache.records[cache.head].name, name, sizeof name);
}

int x_get_name(Cache &cache, uint32_t id, const char *(*source)(uint32_t),
               char (&buffer)[DIR_NAME_SIZE])
{
    const Record *record = x_lookup(cache, id);
    if (record && record->name[0]) {
        memcpy(buffer, record->name, sizeof buffer);
        return static_cast<int>(strlen(buffer));
    }
    const char *name = source(id);
    memset(buffer, 0, sizeof buffer);
    if (name)
        strncpy(buffer, name, sizeof buffer - 1);
    else
        snprintf(buffer, sizeof buffer, "%u", id);
    x_add(cache, id, buffer);
    return name ? 0 : static_cast<int>(strlen(buffer));
}

} // namespace

DirIdSource gDirIds = {x_system_user, x_system_group};

int dir_get_username(uid_t uid, char (&buffer)[DIR_NAME_SIZE])
{
    return x_get_name(sUserCache, uid, gDirIds.user, buffer);
}

int dir_get_groupname(gid_t gid, char (&buffer)[DIR_NAME_SIZE])
{
    return x_get_name(sGroupCache, gid, gDirIds.group, buffer);
}

void dir_forget_names()
{
    sUserCache.count = sUserCache.head = 0;
    sGroupCache.count = sGroupCache.head = 0;
}

} // namespace tav

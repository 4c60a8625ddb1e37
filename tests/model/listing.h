// A listing of a test's own, read with one call and told as names.
#pragma once

#include "app/config.h"
#include "model/dir.h"
#include "testdir.h"

#include <cstring>

namespace tav {

class TestListing {
public:
    explicit TestListing(const std::string &path = "", const char *filespec = "*")
    {
        listing.path = path;
        listing.has_path = !path.empty();
        listing.filespec = filespec;
    }
    ~TestListing() { dir_release(listing); }
    TestListing(const TestListing &) = delete;
    TestListing &operator=(const TestListing &) = delete;

    int read(DirCompare compare = dir_cmp_name, int ascending = 1)
    {
        return dir_read(listing, compare, ascending);
    }

    // The names in order, each followed by a blank.
    std::string names() const
    {
        std::string all;
        for (int i = 0; i < listing.count; i++)
            all += std::string(listing.entries[static_cast<size_t>(i)]->name) + " ";
        return all;
    }

    const DirEntry *find(const char *name) const
    {
        for (int i = 0; i < listing.count; i++)
            if (strcmp(listing.entries[static_cast<size_t>(i)]->name, name) == 0)
                return listing.entries[static_cast<size_t>(i)];
        return nullptr;
    }

    // The entry of that name; one without a name when there is none.
    const DirEntry &at(const char *name) const
    {
        static const DirEntry sNone = {};
        const DirEntry *found = find(name);
        return found ? *found : sNone;
    }

    // Adds an entry that no directory holds.
    DirEntry &add(const std::string &name, mode_t mode = S_IFREG | 0644)
    {
        DirEntry *entry = dir_new_entry();
        memcpy(entry->name, name.c_str(), std::min(name.size() + 1, sizeof entry->name - 1));
        entry->stat.st_mode = mode;
        listing.entries.resize(static_cast<size_t>(listing.count) + 1);
        listing.entries[static_cast<size_t>(listing.count++)] = entry;
        return *entry;
    }

    DirEntry &add_link(const std::string &name, const char *target)
    {
        DirEntry &entry = add(name);
        entry.flags = DIR_LINK;
        entry.link = static_cast<char *>(calloc(1, DIR_LINK_SIZE));
        strncpy(entry.link, target, DIR_LINK_SIZE - 1);
        return entry;
    }

    std::string sorted(DirCompare compare, int ascending = 1)
    {
        dir_sort(listing, compare, ascending);
        return names();
    }

    DirListing listing = {};
};

// The settings as they are by default, for the life of the object.
class TestConfig {
public:
    TestConfig() : m_old(gConfig)
    {
        config_set_defaults(record);
        gConfig = &record;
    }
    ~TestConfig() { gConfig = m_old; }
    TestConfig(const TestConfig &) = delete;
    TestConfig &operator=(const TestConfig &) = delete;

    Config record;

private:
    Config *m_old;
};

} // namespace tav

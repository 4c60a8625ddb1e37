// The model without a window: reading and sorting against the bare system calls, each sort key
// against the library's sort, patterns against fnmatch, growth with the number of entries, memory
// per entry.
#include "app/config.h"
#include "bench.h"
#include "model/dir.h"
#include "model/es.h"

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <fnmatch.h>
#include <malloc.h>
#include <random>
#include <unistd.h>
#include <vector>

using namespace tav;

namespace {

constexpr int COUNT = 100000; // entries of the rows that have one size only

DirListing listing_of(const std::string &path)
{
    DirListing listing = {};
    listing.path = path;
    listing.has_path = true;
    listing.filespec = "*";
    return listing;
}

struct Place {
    const char *name;
    BenchPlace place;
};
constexpr Place PLACES[] = {{"tmpfs", BenchPlace::Memory}, {"disk", BenchPlace::Disk}};

// A first read into an empty listing, and a read again into the one that is there.
void bench_reading(const Place &place, int count, double limit)
{
    std::string size = std::string(place.name) + "_" + std::to_string(count);
    if (!bench_wants("read_sort_" + size) && !bench_wants("reread_sort_" + size))
        return;
    const std::string &path = bench_directory({count}, place.place);
    DirListing listing = listing_of(path);
    auto read = [&] { dir_read(listing, dir_cmp_name, 1); };
    auto loop = [&] { bench_keep(bench_getdents_loop(path.c_str())); };
    int pairs = count >= 1000000 ? 5 : 11;
    bench_compare({"read_sort_" + size, limit, pairs}, {{}, read, [&] { dir_release(listing); }},
                  {{}, loop, {}});
    read();
    bench_compare({"reread_sort_" + size, limit, pairs}, {{}, read, {}}, {{}, loop, {}});
    dir_release(listing);
}

void bench_growth(const Place &place)
{
    std::string name = std::string("read_sort_growth_10000_to_100000_") + place.name;
    if (!bench_wants(name))
        return;
    DirListing small = listing_of(bench_directory({COUNT / 10}, place.place));
    DirListing large = listing_of(bench_directory({COUNT}, place.place));
    bench_compare({name, 12},
                  {{}, [&] { dir_read(large, dir_cmp_name, 1); }, [&] { dir_release(large); }},
                  {{}, [&] { dir_read(small, dir_cmp_name, 1); }, [&] { dir_release(small); }});
}

struct Key {
    const char *name;
    DirCompare compare;
};
constexpr Key KEYS[] = {{"name", dir_cmp_name},   {"size", dir_cmp_size},
                        {"date", dir_cmp_date},   {"user", dir_cmp_user},
                        {"group", dir_cmp_group}, {"permissions", dir_cmp_permissions},
                        {"link", dir_cmp_link}};

// Both sides begin with the same shuffled pointers; the library's key stands ready in each entry.
void bench_sorting()
{
    DirListing listing = listing_of(bench_directory({COUNT}, BenchPlace::Memory));
    if (dir_read(listing, nullptr, 1) != 0)
        exit(1);
    std::mt19937 random(1);
    for (int i = 0; i < listing.count; i++)
        listing.entries[static_cast<size_t>(i)]->item = static_cast<intptr_t>(random());
    std::vector<DirEntry *> shuffled(listing.entries.begin(),
                                     listing.entries.begin() + listing.count);
    std::shuffle(shuffled.begin(), shuffled.end(), random);
    auto shuffle = [&] { std::copy(shuffled.begin(), shuffled.end(), listing.entries.begin()); };
    auto library = [&] {
        std::sort(listing.entries.begin(), listing.entries.begin() + listing.count,
                  [](const DirEntry *a, const DirEntry *b) { return a->item < b->item; });
    };
    for (int folders_first : {0, 1}) {
        gConfig->folders_first = folders_first;
        for (const Key &key : KEYS) {
            std::string name =
                std::string("sort_") + key.name + (folders_first ? "_folders_first" : "");
            bench_compare({name, 6, 15}, {shuffle, [&] { dir_sort(listing, key.compare, 1); }, {}},
                          {shuffle, library, {}});
        }
    }
    gConfig->folders_first = 0;
    dir_release(listing);
}

void bench_patterns()
{
    DirListing listing = listing_of(bench_directory({COUNT}, BenchPlace::Memory));
    if (dir_read(listing, nullptr, 1) != 0)
        exit(1);
    for (const char *text : {"*", "*.c", "*a*e*", "[a-m]*[0-9]*", "^*A*|*.H"}) {
        int found = 0;
        auto ours = [&] {
            EsPattern pattern = es_pattern_prepare(text);
            for (int i = 0; i < listing.count; i++)
                found += es_pattern_matches(pattern, listing.entries[static_cast<size_t>(i)]->name);
        };
        auto library = [&] {
            const char *plain = text[0] == '^' ? text + 1 : text;
            for (int i = 0; i < listing.count; i++)
                found += fnmatch(plain, listing.entries[static_cast<size_t>(i)]->name, 0) == 0;
        };
        bench_compare({std::string("match_") + text, 2, 15}, {{}, ours, {}}, {{}, library, {}});
        bench_keep(found);
    }
    dir_release(listing);
}

// Bytes of memory that the process has in use; entries come from mapped blocks, not from malloc.
double resident_bytes()
{
    long pages = 0;
    if (FILE *statm = fopen("/proc/self/statm", "r")) {
        if (fscanf(statm, "%*s %ld", &pages) != 1)
            pages = 0;
        fclose(statm);
    }
    return static_cast<double>(pages) * static_cast<double>(sysconf(_SC_PAGESIZE));
}

void bench_memory()
{
    if (!bench_wants("memory_per_entry"))
        return;
    DirListing listing = listing_of(bench_directory({COUNT}, BenchPlace::Memory));
    malloc_trim(0);
    double before = resident_bytes();
    dir_read(listing, dir_cmp_name, 1);
    malloc_trim(0); // what reading and sorting needed only for a while
    bench_report({"memory_per_entry", 1.3}, (resident_bytes() - before) / listing.count,
                 sizeof(DirEntry));
    dir_release(listing);
}

} // namespace

int main(int argc, char **argv)
{
    bench_start(argc, argv);
    setlocale(LC_CTYPE, "C.UTF-8");
    for (const Place &place : PLACES) {
        for (int count : {1000, 10000, 100000})
            bench_reading(place, count, 1.5);
        if (bench_large())
            bench_reading(place, 1000000, 1.6);
        bench_growth(place);
    }
    bench_sorting();
    bench_patterns();
    bench_memory();
    return 0;
}

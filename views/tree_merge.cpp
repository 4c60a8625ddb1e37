// Joining the hotlists of two instances.
#include "views/tree_hotlist.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

namespace tav {

namespace {

using Paths = std::vector<std::string>;
using Set = std::unordered_set<std::string>;

Set set_of(const Paths &paths) { return Set(paths.begin(), paths.end()); }

// The entries of paths that keep says yes to, in their order.
template <typename Keep>
Paths filtered(const Paths &paths, const Keep &keep)
{
    Paths out;
    std::copy_if(paths.begin(), paths.end(), std::back_inserter(out), keep);
    return out;
}

Paths without_repeats(const Paths &paths)
{
    Set seen;
    return filtered(paths, [&](const std::string &path) { return seen.insert(path).second; });
}

// Puts the entries of more that base_order lacks into it: what stood last stands last, every other
// one behind the entry that it follows in more (at the front when it follows none).
Paths woven(const Paths &base_order, const Paths &more)
{
    const Set placed = set_of(base_order);
    std::unordered_map<std::string, Paths> behind; // by the placed entry in front
    Paths first, run;                              // at the front; since the last placed entry
    const std::string *before = nullptr;
    for (const std::string &path : more) {
        if (!placed.count(path)) {
            run.push_back(path);
            continue;
        }
        (before ? behind[*before] : first).swap(run);
        run.clear();
        before = &path;
    }
    Paths out = std::move(first);
    for (const std::string &path : base_order) {
        out.push_back(path);
        const auto follow = behind.find(path);
        if (follow != behind.end())
            out.insert(out.end(), follow->second.begin(), follow->second.end());
    }
    out.insert(out.end(), run.begin(), run.end());
    return out;
}

} // namespace

std::vector<std::string> tree_merge(const Paths &base, const Paths &ours, const Paths &theirs)
{
    const Set in_base = set_of(base), in_ours = set_of(ours), in_theirs = set_of(theirs);
    auto ours_too = [&](const std::string &path) { return in_ours.count(path) != 0; };
    auto base_too = [&](const std::string &path) { return in_base.count(path) != 0; };
    // Removed is, on either side, what the base had and the side has not.
    const Paths their_part = filtered(without_repeats(theirs), [&](const std::string &path) {
        return ours_too(path) || !base_too(path);
    });
    const Paths our_part = filtered(
        ours, [&](const std::string &path) { return in_theirs.count(path) || !base_too(path); });
    const bool reordered = filtered(base, ours_too) != filtered(ours, base_too);
    return reordered ? woven(our_part, their_part) : woven(their_part, our_part);
}

} // namespace tav

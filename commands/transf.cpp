// The packed form of a file list, and taking other people's apart.
#include "commands/transf.h"

#include <cstring>
#include <sys/random.h>
#include <unistd.h>

namespace tav {

namespace {

constexpr std::string_view MAGIC = "TAVL";

void x_put32(std::string &out, size_t value)
{
    for (int shift = 0; shift < 32; shift += 8)
        out.push_back(static_cast<char>((value >> shift) & 0xFF));
}

void x_put_text(std::string &out, std::string_view text)
{
    x_put32(out, text.size());
    out.append(text);
}

// Takes the first size bytes off the rest; false when there are fewer.
bool x_take(std::string_view &rest, size_t size, std::string_view &out)
{
    if (rest.size() < size)
        return false;
    out = rest.substr(0, size);
    rest.remove_prefix(size);
    return true;
}

bool x_take32(std::string_view &rest, uint32_t &value)
{
    std::string_view bytes;
    if (!x_take(rest, 4, bytes))
        return false;
    value = 0;
    for (int i = 3; i >= 0; i--)
        value = value << 8 | static_cast<unsigned char>(bytes[i]);
    return true;
}

bool x_take_text(std::string_view &rest, std::string_view &out)
{
    uint32_t size = 0;
    return x_take32(rest, size) && x_take(rest, size, out);
}

bool x_take_type(std::string_view &rest, bool &cut)
{
    std::string_view type;
    if (!x_take(rest, TRANSF_COPY.size(), type))
        return false;
    cut = type == std::string_view(TRANSF_MOVE.data(), TRANSF_MOVE.size());
    return cut || type == std::string_view(TRANSF_COPY.data(), TRANSF_COPY.size());
}

bool x_take_names(std::string_view rest, uint32_t count, std::vector<std::string_view> &names)
{
    if (count == 0 ||
        count > rest.size() / 5) // a length and one byte each: no room is taken on a lie
        return false;
    names.reserve(count);
    for (uint32_t i = 0; i < count; i++) {
        std::string_view name;
        if (!x_take_text(rest, name) || !transf_is_name(name))
            return false;
        names.push_back(name);
    }
    return rest.empty();
}

} // namespace

bool transf_is_name(std::string_view name)
{
    return !name.empty() && name.size() <= TRANSF_MAX_NAME && name != "." && name != ".." &&
           name.find('/') == name.npos && name.find('\0') == name.npos;
}

bool transf_is_directory(std::string_view directory)
{
    return !directory.empty() && directory.size() <= TRANSF_MAX_DIRECTORY && directory[0] == '/' &&
           directory.find('\0') == directory.npos;
}

FileListRecord transf_make(std::string_view directory, const std::vector<std::string_view> &names)
{
    size_t size = directory.size() + 1;
    for (std::string_view name : names)
        size += name.size() + 1;
    FileListRecord list;
    list.storage = std::make_unique<char[]>(size); // filled with NUL, so every text is terminated
    char *to = list.storage.get();
    auto put = [&to](std::string_view text) {
        const char *place = to;
        if (!text.empty())
            memcpy(to, text.data(), text.size());
        to += text.size() + 1;
        return place;
    };
    list.directory = put(directory);
    list.names.reserve(names.size());
    for (std::string_view name : names)
        list.names.push_back(put(name));
    list.count = static_cast<int32_t>(names.size());
    return list;
}

FileListRecord transf_own(const FileListRecord &list)
{
    std::vector<std::string_view> names;
    names.reserve(list.names.size());
    for (const char *name : list.names)
        if (*name)
            names.emplace_back(name);
    return transf_make(list.directory, names);
}

std::string transf_pack(const FileListRecord &list, bool cut, const TransfId &id)
{
    const TransfType &type = cut ? TRANSF_MOVE : TRANSF_COPY;
    std::string out(MAGIC);
    x_put32(out, TRANSF_VERSION);
    out.append(type.data(), type.size());
    out.append(id.data(), id.size());
    size_t count_at = out.size();
    x_put32(out, 0);
    x_put_text(out, list.directory);
    size_t count = 0;
    for (const char *name : list.names)
        if (*name) {
            x_put_text(out, name);
            count++;
        }
    std::string number;
    x_put32(number, count);
    out.replace(count_at, number.size(), number);
    return out;
}

int transf_unpack(std::string_view bytes, TransfOffer &offer)
{
    std::string_view rest = bytes;
    std::string_view magic, id, directory;
    uint32_t version = 0, count = 0;
    bool cut = false;
    if (bytes.size() > TRANSF_MAX_BYTES || !x_take(rest, MAGIC.size(), magic) || magic != MAGIC)
        return -1;
    if (!x_take32(rest, version) || version != TRANSF_VERSION || !x_take_type(rest, cut))
        return -1;
    if (!x_take(rest, offer.id.size(), id) || !x_take32(rest, count))
        return -1;
    std::vector<std::string_view> names;
    if (!x_take_text(rest, directory) || !transf_is_directory(directory) ||
        !x_take_names(rest, count, names))
        return -1;
    offer.cut = cut;
    memcpy(offer.id.data(), id.data(), id.size());
    offer.list = transf_make(directory, names);
    return 0;
}

TransfId transf_new_id()
{
    TransfId id{};
    size_t done = 0;
    while (done < id.size()) {
        ssize_t got = getrandom(id.data() + done, id.size() - done, 0);
        if (got <= 0) { // no random source: the process and its own count are unique enough
            static uint32_t sCount = 0;
            uint32_t parts[2] = {static_cast<uint32_t>(getpid()), ++sCount};
            memcpy(id.data(), parts, sizeof parts);
            break;
        }
        done += static_cast<size_t>(got);
    }
    return id;
}

} // namespace tav

// The file of the associations: one row a line, fields separated by TABs.
#include "commands/as.h"

#include "model/es.h"
#include "platform/replace_file.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

namespace tav {

const char AS_HEADER[] =
    "# <pattern[|pattern[..]]> \\t <open_command> \\t <view_command> \\t <edit command>\n";

void (*gAsFatal)(const char *message);

namespace {

std::string sPath; // where the table was read from; empty when there is no settings directory

using FileHandle = std::unique_ptr<FILE, int (*)(FILE *)>;

// A directory can be opened, but nothing can be read from it.
bool x_is_readable(FILE *file)
{
    int first = std::getc(file);
    if (first == EOF && std::ferror(file))
        return false;
    if (first != EOF)
        std::ungetc(first, file);
    return true;
}

} // namespace

std::string as_join(const Association &row)
{
    return row.pattern + '\t' + row.open + '\t' + row.view + '\t' + row.edit;
}

Association as_split(std::string_view line)
{
    std::string fields[4];
    for (std::string &field : fields) {
        size_t end = line.find('\t');
        field = line.substr(0, end);
        line = end == line.npos ? std::string_view() : line.substr(end + 1);
    }
    AsMatch match = as_match_make(fields[0]);
    return {fields[0], fields[1], fields[3], fields[2], std::move(match)};
}

const char *as_refuse(std::string_view pattern, std::string_view line)
{
    if (pattern.empty() || pattern.find('\t') != pattern.npos)
        return "Pattern cannot have TABs";
    if (pattern.starts_with('#'))
        return "Pattern cannot begin with #";
    if (line.find('\n') != line.npos)
        return "Association cannot have more than one line";
    if (line.size() + 1 >= AS_LINE_SIZE)
        return "Association is too long";
    return nullptr;
}

namespace {

int x_read(const char *path, std::string &message)
{
    FileHandle file(path ? std::fopen(path, "re") : nullptr, std::fclose);
    if (!file || !x_is_readable(file.get())) {
        as_set_defaults();
        return 0;
    }
    apat.clear();
    char line[AS_LINE_SIZE];
    while (std::fgets(line, sizeof line, file.get()) != nullptr) {
        if (line[0] == '#')
            continue;
        line[std::strcspn(line, "\n")] = '\0';
        if (std::strchr(line, '\t') == nullptr) {
            message = "Invalid association at line " + std::to_string(apat.size() + 1);
            return -1;
        }
        apat.push_back(as_split(line));
    }
    return 0;
}

} // namespace

int as_read(const char *path, std::string &message)
{
    try {
        return x_read(path, message);
    } catch (const std::bad_alloc &) {
        message.clear();
        return -1;
    }
}

void as_fatal(const char *message)
{
    if (gAsFatal != nullptr)
        gAsFatal(message);
    else
        std::fprintf(stderr, "%s\n", message);
    std::exit(1);
}

void init_read_associations(const char *directory, const char *file_name)
{
    sPath.clear();
    if (directory != nullptr)
        es_construct_fullpath(sPath, directory, file_name);
    std::string message;
    if (as_read(sPath.empty() ? nullptr : sPath.c_str(), message) != 0)
        as_fatal(message.empty() ? AS_NO_MEMORY : message.c_str());
}

int as_write()
{
    if (sPath.empty()) {
        errno = ENOENT;
        return -1;
    }
    std::string content = AS_HEADER;
    for (const Association &row : apat)
        content += as_join(row) + '\n';
    return replace_file_write(sPath.c_str(), content);
}

} // namespace tav

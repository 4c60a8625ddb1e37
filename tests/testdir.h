// What every test that touches files stands on: a directory of its own, made in one line per entry
// with size, time and mode, removed whatever the test did to it; and a home of its own. Knows
// neither GoogleTest nor Qt, so both kinds of test use it.
#pragma once

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <functional>
#include <grp.h>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace tav {

// Removes a file or a whole tree, opening up directories that a test had closed. Follows no link.
inline void test_remove(int base, const char *name)
{
    if (unlinkat(base, name, 0) == 0 || errno == ENOENT)
        return;
    int fd = openat(base, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0) {
        fchmodat(base, name, 0700, 0);
        fd = openat(base, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    }
    if (fd < 0)
        return;
    fchmod(fd, 0700);
    std::vector<std::string> names;
    if (DIR *dir = fdopendir(dup(fd))) {
        while (dirent *entry = readdir(dir))
            if (std::string_view(entry->d_name) != "." && std::string_view(entry->d_name) != "..")
                names.emplace_back(entry->d_name);
        closedir(dir);
    }
    for (const std::string &each : names)
        test_remove(fd, each.c_str());
    close(fd);
    unlinkat(base, name, AT_REMOVEDIR);
}

// Waits until the condition holds, at most limit milliseconds. False when it never did.
inline bool test_wait(const std::function<bool()> &condition, int limit = 5000)
{
    auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(limit);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

// Runs f as an ordinary user, in a child where that needs one (root may read and write everything).
// What f returns, 0 to 100; 101 when it could not be run. Assert on the result, not inside f.
inline int test_as_ordinary_user(const std::function<int()> &f)
{
    if (geteuid() != 0)
        return f();
    constexpr unsigned NOBODY = 65534;
    pid_t child = fork();
    if (child == 0) {
        if (setgroups(0, nullptr) != 0 || setgid(NOBODY) != 0 || setuid(NOBODY) != 0)
            _exit(101);
        _exit(f());
    }
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child || !WIFEXITED(status))
        return 101;
    return WEXITSTATUS(status);
}

// A directory under TMPDIR (or /tmp), gone with the object; the working directory is put back too.
// Names are relative to it and may hold "/". Every maker returns the entry's full path.
class TestDir {
public:
    TestDir()
    {
        const char *base = getenv("TMPDIR");
        std::string pattern = std::string(base && *base ? base : "/tmp") + "/tav-test-XXXXXX";
        if (!mkdtemp(pattern.data()))
            fail("mkdtemp", pattern);
        chmod(pattern.c_str(), 0755);
        m_path = pattern;
        char *cwd = getcwd(nullptr, 0);
        m_cwd = cwd ? cwd : "/";
        free(cwd);
    }
    ~TestDir()
    {
        if (chdir(m_cwd.c_str()) != 0 && chdir("/") != 0)
            perror("chdir");
        test_remove(AT_FDCWD, m_path.c_str());
    }
    TestDir(const TestDir &) = delete;
    TestDir &operator=(const TestDir &) = delete;

    const std::string &path() const { return m_path; }
    std::string at(std::string_view name) const { return m_path + "/" + std::string(name); }

    // A file of that size (sparse where the file system can).
    std::string file(std::string_view name, off_t size = 0, mode_t mode = 0644)
    {
        std::string path = at(name);
        int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
        if (fd < 0 || ftruncate(fd, size) != 0 || fchmod(fd, mode) != 0)
            fail("file", path);
        close(fd);
        return path;
    }

    // A file with that content.
    std::string text(std::string_view name, std::string_view content, mode_t mode = 0644)
    {
        std::string path = file(name, 0, 0600);
        FILE *out = fopen(path.c_str(), "wb");
        if (!out || fwrite(content.data(), 1, content.size(), out) != content.size())
            fail("text", path);
        fclose(out);
        chmod(path.c_str(), mode);
        return path;
    }

    // A directory, with what leads to it.
    std::string dir(std::string_view name, mode_t mode = 0755)
    {
        std::string path = at(name);
        for (size_t i = m_path.size() + 1; (i = path.find('/', i)) != std::string::npos; i++)
            mkdir(path.substr(0, i).c_str(), 0755);
        if ((mkdir(path.c_str(), 0755) != 0 && errno != EEXIST) || chmod(path.c_str(), mode) != 0)
            fail("dir", path);
        return path;
    }

    std::string link(std::string_view name, const std::string &target)
    {
        std::string path = at(name);
        if (symlink(target.c_str(), path.c_str()) != 0)
            fail("link", path);
        return path;
    }

    std::string fifo(std::string_view name, mode_t mode = 0644)
    {
        std::string path = at(name);
        if (mkfifo(path.c_str(), mode) != 0)
            fail("fifo", path);
        return path;
    }

    // Empty files: the prefix and a number of six digits, from 000000.
    void many(const std::string &prefix, int count)
    {
        for (int i = 0; i < count; i++) {
            char number[16];
            snprintf(number, sizeof number, "%06d", i);
            file(prefix + number);
        }
    }

    // Modification (and access) time in seconds since the epoch; of a link itself.
    void mtime(std::string_view name, time_t seconds)
    {
        timespec times[2] = {{seconds, 0}, {seconds, 0}};
        if (utimensat(AT_FDCWD, at(name).c_str(), times, AT_SYMLINK_NOFOLLOW) != 0)
            fail("mtime", at(name));
    }

    void mode(std::string_view name, mode_t mode)
    {
        if (chmod(at(name).c_str(), mode) != 0)
            fail("mode", at(name));
    }

    void remove(std::string_view name) { test_remove(AT_FDCWD, at(name).c_str()); }

    // Whether there is such an entry, a broken link included.
    bool exists(std::string_view name) const
    {
        struct stat st;
        return lstat(at(name).c_str(), &st) == 0;
    }

    struct stat status(std::string_view name) const
    {
        struct stat st = {};
        lstat(at(name).c_str(), &st);
        return st;
    }

    // The content of a file; empty when it cannot be read.
    std::string read(std::string_view name) const
    {
        std::string content;
        if (FILE *in = fopen(at(name).c_str(), "rb")) {
            char buffer[4096];
            while (size_t n = fread(buffer, 1, sizeof buffer, in))
                content.append(buffer, n);
            fclose(in);
        }
        return content;
    }

    // The names in the directory (or in one below it), sorted by bytes.
    std::vector<std::string> names(std::string_view below = "") const
    {
        std::vector<std::string> found;
        if (DIR *dir = opendir(at(below).c_str())) {
            while (dirent *entry = readdir(dir))
                if (std::string_view(entry->d_name) != "." &&
                    std::string_view(entry->d_name) != "..")
                    found.emplace_back(entry->d_name);
            closedir(dir);
        }
        std::sort(found.begin(), found.end());
        return found;
    }

private:
    [[noreturn]] static void fail(const char *what, const std::string &path)
    {
        fprintf(stderr, "test directory: %s %s: %s\n", what, path.c_str(), strerror(errno));
        abort();
    }

    std::string m_path;
    std::string m_cwd;
};

// An environment variable for the life of the object; null unsets it.
class TestEnv {
public:
    TestEnv(const char *name, const char *value) : m_name(name)
    {
        const char *old = getenv(name);
        m_had = old != nullptr;
        m_old = old ? old : "";
        set(value);
    }
    ~TestEnv() { set(m_had ? m_old.c_str() : nullptr); }
    TestEnv(const TestEnv &) = delete;
    TestEnv &operator=(const TestEnv &) = delete;
    void set(const char *value)
    {
        if (value)
            setenv(m_name.c_str(), value, 1);
        else
            unsetenv(m_name.c_str());
    }

private:
    std::string m_name;
    std::string m_old;
    bool m_had;
};

// A home of its own with the folder ".ph" in it, so that settings can be kept in settings().
class TestHome : public TestDir {
public:
    TestHome() : m_env("HOME", path().c_str()) { dir(".ph"); }
    std::string settings() const { return at(".ph/tav"); }

private:
    TestEnv m_env;
};

} // namespace tav

// A place for tests that really run programs: a directory of stand-ins that is first in PATH, a
// directory that is "shown", and the arguments that the last program received.
#pragma once

#include "commands/misc.h"
#include "model/dir.h"
#include "platform/child.h"
#include "platform/namesake.h"
#include "support/write_args.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace tav {

using Texts = std::vector<std::string>;

class LaunchFixture : public testing::Test {
protected:
    LaunchFixture()
    {
        char pattern[] = "/tmp/tav-launch-XXXXXX";
        root = mkdtemp(pattern);
        bin = root + "/bin";
        std::filesystem::create_directory(bin);
        std::filesystem::create_directory(root + "/listed");
        out = root + "/out";
        setenv("PATH", (bin + ":/usr/bin:/bin").c_str(), 1);
        setenv("ARGS_OUT", out.c_str(), 1);
        stand_in("show");
        show_directory(root + "/listed");
        gMiscHooks = {};
        gMiscHooks.status = [](const std::string &text) { sStatus = text; };
        gMiscHooks.report = [](const std::string &text) { sReport = text; };
        sStatus.clear();
        sReport.clear();
    }

    ~LaunchFixture() override
    {
        finish();
        gNamesakeFolder.clear();
        gNamesakeSystem.clear();
        setenv("PATH", "/usr/local/bin:/usr/bin:/bin", 1);
        unsetenv("ARGS_OUT");
        gDir = {};
        gDir.current = -1;
        gMiscHooks = {};
        std::filesystem::remove_all(root);
    }

    // A program of that name writes its arguments down.
    void stand_in(const std::string &name) const
    {
        std::filesystem::create_symlink(test::write_args_path(), bin + "/" + name);
    }

    void script(const std::string &name, const std::string &text) const
    {
        std::filesystem::remove(bin + "/" + name);
        std::ofstream(bin + "/" + name) << "#!/bin/sh\n" << text << "\n";
        chmod((bin + "/" + name).c_str(), 0755);
    }

    static void show_directory(const std::string &path)
    {
        std::filesystem::create_directories(path);
        ASSERT_EQ(chdir(path.c_str()), 0);
        gDir.path = path;
        gDir.has_path = true;
    }

    // The system has other programs of these names, which write "other" and their arguments down;
    // ours, which write their name, come along.
    void have_namesakes(const Texts &names)
    {
        gNamesakeFolder = root + "/ours";
        gNamesakeSystem = {root + "/system"};
        std::filesystem::create_directory(gNamesakeFolder);
        std::filesystem::create_directory(gNamesakeSystem[0]);
        for (const std::string &name : names) {
            script("../system/" + name, "exec show other \"$@\"");
            script("../ours/" + name, "PATH=${PATH#\"${0%/*}\":}; exec show " + name +
                                          " \"$@\" \"PATH begins with ${PATH%%:*}\"");
        }
        setenv("PATH", (bin + ":" + root + "/system:/usr/bin:/bin:" + root + "/ours").c_str(), 1);
    }

    // Lists the names, all selected or none, the cursor on the first. A name ending in "/" is a
    // directory.
    void list(const Texts &names, bool selected)
    {
        entries.clear();
        gDir.entries.clear();
        for (const std::string &name : names) {
            auto entry = std::make_unique<DirEntry>();
            const bool directory = name.ends_with('/');
            entry->stat.st_mode = directory ? S_IFDIR | 0755 : S_IFREG | 0644;
            std::memcpy(entry->name, name.data(), name.size() - (directory ? 1 : 0));
            entry->flags = selected ? DIR_SELECTED : 0;
            gDir.nseldirs += selected && directory ? 1 : 0;
            gDir.entries.push_back(entry.get());
            entries.push_back(std::move(entry));
        }
        gDir.count = static_cast<int>(names.size());
        gDir.nselected = selected ? gDir.count : 0;
        gDir.current = 0;
    }

    // Waits until all that was started has ended.
    static void finish()
    {
        siginfo_t info;
        while (child_reap() > 0)
            waitid(P_ALL, 0, &info, WEXITED | WNOWAIT); // sleeps; child_reap collects it
        misc_tick();
    }

    // The arguments that were written down; nothing when none were.
    std::optional<Texts> received()
    {
        finish();
        std::ifstream file(out, std::ios::binary);
        if (!file)
            return std::nullopt;
        std::ostringstream content;
        content << file.rdbuf();
        const std::string bytes = content.str();
        std::filesystem::remove(out);
        Texts arguments;
        for (size_t begin = 0, end; begin < bytes.size(); begin = end + 1) {
            end = bytes.find('\0', begin);
            arguments.push_back(bytes.substr(begin, end - begin));
        }
        return arguments;
    }

    // The same when a first child stops for want of a terminal and a grandchild writes them.
    std::optional<Texts> received_in_terminal()
    {
        siginfo_t info;
        waitid(P_ALL, 0, &info, WSTOPPED | WEXITED | WNOWAIT);
        misc_tick();
        wait_for_output();
        return received();
    }

    void wait_for_output() const
    {
        const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (!std::filesystem::exists(out) && std::chrono::steady_clock::now() < limit)
            std::this_thread::yield();
    }

    std::string root, bin, out;
    std::vector<std::unique_ptr<DirEntry>> entries;
    static inline std::string sStatus, sReport; // the last messages
};

} // namespace tav

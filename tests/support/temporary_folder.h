// SPDX-License-Identifier: GPL-3.0-or-later
// A folder of a test's own, removed with everything in it, whatever the test has forbidden there.
#pragma once

#include "platform/text.h"

#include <cstdlib>
#include <filesystem>

class TemporaryFolder
{
public:
    explicit TemporaryFolder(const Text& parent = "/tmp") : path_(parent + "/velmora-test-XXXXXX")
    {
        path_ = mkdtemp(path_.data());
    }
    ~TemporaryFolder()
    {
        namespace fs = std::filesystem;
        std::error_code ignored;
        fs::permissions(path_, fs::perms::owner_all, ignored);
        for (const auto& entry : fs::recursive_directory_iterator(path_, ignored))
            if (!entry.is_symlink() && entry.is_directory())
                fs::permissions(entry, fs::perms::owner_all, ignored);
        fs::remove_all(path_, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const Text& path() const { return path_; }
    Text operator/(std::string_view name) const { return Text(path_).append("/").append(name); }

private:
    Text path_;
};

// A parent for the folders of tests that write more than a disk takes quickly.
inline Text memoryFolder() { return std::filesystem::is_directory("/dev/shm") ? "/dev/shm" : "/tmp"; }

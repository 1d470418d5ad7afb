// A file system of a few kilobytes, to be filled. Needs the right to mount, without which it does not stand.
#pragma once

#include "platform/text.h"

#include <doctest/doctest.h>

#include <sys/mount.h>

#include <filesystem>

class SmallDisk
{
public:
    SmallDisk(const Text& folder, int kilobytes) : folder_(folder)
    {
        std::filesystem::create_directory(folder);
        const Text size = "size=" + std::to_string(kilobytes) + "k";
        mounted_ = mount("tmpfs", folder.c_str(), "tmpfs", 0, size.c_str()) == 0;
        if (!mounted_)
            MESSAGE("skipped: this process may not mount a file system");
    }
    ~SmallDisk()
    {
        if (mounted_)
            umount2(folder_.c_str(), MNT_DETACH);
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

    explicit operator bool() const { return mounted_; }

private:
    Text folder_;
    bool mounted_;
};

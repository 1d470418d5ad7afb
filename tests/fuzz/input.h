// SPDX-License-Identifier: GPL-3.0-or-later
// A fuzzer's bytes as a file without a disk.
#pragma once

#include "files/input_file.h"

#include <cstdint>
#include <sys/mman.h>
#include <unistd.h>

class FuzzedFile
{
public:
    FuzzedFile(const std::uint8_t* bytes, std::size_t size) : descriptor_(memfd_create("fuzz", MFD_CLOEXEC))
    {
        for (std::size_t at = 0; at < size;)
            at += static_cast<std::size_t>(write(descriptor_, bytes + at, size - at));
    }
    ~FuzzedFile() { close(descriptor_); }
    FuzzedFile(const FuzzedFile&) = delete;
    FuzzedFile& operator=(const FuzzedFile&) = delete;

    Text path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

private:
    int descriptor_;
};

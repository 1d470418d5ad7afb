// SPDX-License-Identifier: GPL-3.0-or-later
// What fuzzers share: their bytes as a text or as a file, and what ends them.
#pragma once

#include "files/input_file.h"
#include "tests/support/files.h"
#include "tests/support/temporary_folder.h"

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <sys/mman.h>
#include <unistd.h>

inline void require(bool holds, const char* what = "")
{
    if (holds)
        return;
    std::cerr << what << "\n";
    std::abort();
}

inline std::string_view asText(const std::uint8_t* bytes, std::size_t size)
{
    return {reinterpret_cast<const char*>(bytes), size};
}

// Without a disk.
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

// For readers of a file that they also write, or of more than one. It lasts as long as the fuzzer.
inline const TemporaryFolder& memory()
{
    static const TemporaryFolder folder(memoryFolder());
    return folder;
}

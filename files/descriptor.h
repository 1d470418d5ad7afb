// SPDX-License-Identifier: GPL-3.0-or-later
// An open file of the system, closed with its owner, and the loops over the system's calls: those may do less
// than they are asked, or be interrupted.
#pragma once

#include "platform/text.h"

#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>

namespace files
{

class Descriptor
{
public:
    explicit Descriptor(int number = -1) : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept
    {
        std::swap(number_, other.number_);
        return *this;
    }
    ~Descriptor()
    {
        if (number_ >= 0)
            close(number_);
    }

    explicit operator bool() const { return number_ >= 0; }
    int number() const { return number_; }

private:
    int number_;
};

inline std::span<const std::byte> bytesOf(std::string_view text) { return std::as_bytes(std::span(text)); }

// Fills `into` from `at` on. Fewer bytes only at the end of the file; -1 when reading failed.
std::ptrdiff_t readAt(const Descriptor& file, std::span<std::byte> into, std::int64_t at);

// The bytes from `at` on: as `readAt`, but none where reading failed.
Text bytesAt(const Descriptor& file, std::size_t count, std::int64_t at);

// What follows here is false when it failed, and the system's error number says why.
bool writeAt(const Descriptor& file, std::span<const std::byte> bytes, std::int64_t at);

// The disk begins with what was written, and nobody waits for it; but a file system on the network, which
// says only now whether it has room, is asked.
bool startForce(const Descriptor& file);

// Waits until the disk has what was written. A file system that knows no such thing has it at once.
bool force(const Descriptor& file);

// From where the file stands to its end, behind what `bytes` holds; what came before a failure is there.
bool readRest(const Descriptor& file, Text& bytes);

// What a small file holds, such as the system and the program itself keep; "" for what is not there.
Text contentOf(const Text& path);

}

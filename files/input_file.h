// SPDX-License-Identifier: GPL-3.0-or-later
// A file opened for reading, from which several readers may read at places of their own.
#pragma once

#include "files/descriptor.h"
#include "platform/failure.h"

#include <cstddef>
#include <cstdint>
#include <memory>

namespace files
{

class InputFile
{
public:
    // nullptr for whatever is no readable regular file, the reason in `errno`; a pipe or a device is not
    // waited for.
    static std::shared_ptr<const InputFile> open(const Text& path);

    // Fails with 53, 70, 75 or 76 instead.
    static std::shared_ptr<const InputFile> openOrFail(const Text& path);

    // Reads up to `size` bytes at `offset`, fewer only at the end of the file. -1 when reading failed.
    std::ptrdiff_t read(void* into, std::size_t size, std::int64_t offset) const;

    std::int64_t size() const { return size_; } // bytes, when it was opened
    const Descriptor& descriptor() const { return file_; }

private:
    InputFile(Descriptor file, std::int64_t size) : file_(std::move(file)), size_(size) {}

    Descriptor file_;
    std::int64_t size_;
};

// The failure of a job whose file cannot be read, or is shorter than it was when it was opened: number 57.
Failure brokenOff();

// Reads a file forwards through a window of its own, so that many small reads cost few calls.
class FileWindow
{
public:
    static constexpr std::size_t windowBytes = 64 * 1024;

    explicit FileWindow(std::shared_ptr<const InputFile> file) : file_(std::move(file)) {}

    // Reads up to `size` bytes at `offset`, fewer at the end of the file, and where reading fails.
    std::ptrdiff_t read(void* into, std::size_t size, std::int64_t offset);

    // Bytes in the window, `windowBytes` at most, valid until the next call; nullptr where the file ends
    // before, or cannot be read.
    const unsigned char* view(std::int64_t offset, std::size_t size);

    // True once something was missing that the file had when it was opened: it cannot be read, or has become
    // shorter.
    bool hasFailed() const { return failed_; }

private:
    bool covers(std::int64_t offset) const;
    void moveTo(std::int64_t offset);

    std::shared_ptr<const InputFile> file_;
    std::unique_ptr<unsigned char[]> bytes_ = std::make_unique_for_overwrite<unsigned char[]>(windowBytes);
    std::int64_t start_ = 0;
    std::ptrdiff_t filled_ = 0;
    bool failed_ = false;
};

}

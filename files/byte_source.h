// SPDX-License-Identifier: GPL-3.0-or-later
// Bytes that are read where they are wanted, so that a large picture in a tag costs nothing.
#pragma once

#include "files/input_file.h"
#include "platform/text.h"

#include <cstddef>
#include <cstdint>
#include <memory>

namespace files
{

class ByteSource
{
public:
    virtual ~ByteSource() = default;

    virtual std::uint64_t size() const = 0;

    // Fewer bytes than asked for at the end, and where reading fails.
    virtual Text read(std::uint64_t at, std::size_t count) = 0;

    // For bytes that are to be written again: fails with 57 instead of giving fewer.
    Text readAll(std::uint64_t at, std::size_t count);
};

class FileBytes final : public ByteSource
{
public:
    explicit FileBytes(std::shared_ptr<const InputFile> file) :
        size_(static_cast<std::uint64_t>(file->size())), window_(std::move(file))
    {
    }

    std::uint64_t size() const override { return size_; }
    Text read(std::uint64_t at, std::size_t count) override;

private:
    std::uint64_t size_;
    FileWindow window_;
};

// A stretch of another source, counted from its own beginning.
class StretchOfBytes final : public ByteSource
{
public:
    StretchOfBytes(ByteSource& whole, std::uint64_t from, std::uint64_t size) :
        whole_(whole), from_(from), size_(size)
    {
    }

    std::uint64_t size() const override { return size_; }
    Text read(std::uint64_t at, std::size_t count) override;

private:
    ByteSource& whole_;
    std::uint64_t from_;
    std::uint64_t size_;
};

class BytesInMemory final : public ByteSource
{
public:
    explicit BytesInMemory(Text bytes) : bytes_(std::move(bytes)) {}

    std::uint64_t size() const override { return bytes_.size(); }
    Text read(std::uint64_t at, std::size_t count) override;

private:
    Text bytes_;
};

}

// Bytes that are read where they are wanted, so that a large picture in a tag costs nothing.
#pragma once

#include "platform/text.h"

#include <cstddef>
#include <cstdint>

class ByteSource
{
public:
    virtual ~ByteSource() = default;

    virtual std::uint64_t size() const = 0;

    // Fewer bytes than asked for at the end, and where reading fails.
    virtual Text read(std::uint64_t at, std::size_t count) = 0;
};

// An open file, which must stay open. It is read in pieces of 16 KB, the last one kept.
class FileBytes final : public ByteSource
{
public:
    FileBytes(int descriptor, std::uint64_t size) : descriptor_(descriptor), size_(size) {}

    std::uint64_t size() const override { return size_; }
    Text read(std::uint64_t at, std::size_t count) override;

private:
    Text readPast(std::uint64_t at, std::size_t count) const;

    int descriptor_;
    std::uint64_t size_;
    Text piece_;
    std::uint64_t pieceAt_ = 0;
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

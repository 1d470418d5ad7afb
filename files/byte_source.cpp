// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/byte_source.h"

#include "platform/failure.h"

#include <algorithm>

namespace files
{

namespace
{

constexpr std::size_t pieceSize = 16 * 1024;

// The part of `count` that lies before the end.
std::size_t within(const ByteSource& source, std::uint64_t at, std::size_t count)
{
    if (at >= source.size())
        return 0;
    return static_cast<std::size_t>(std::min<std::uint64_t>(count, source.size() - at));
}

}

Text ByteSource::readAll(std::uint64_t at, std::size_t count)
{
    Text bytes = read(at, count);
    if (bytes.size() < count)
        throw Failure{Trouble::deviceInputOutput, "The file could not be read."};
    return bytes;
}

FileBytes::FileBytes(std::shared_ptr<const InputFile> file) :
    file_(std::move(file)), size_(static_cast<std::uint64_t>(file_->size()))
{
}

Text FileBytes::freshly(std::uint64_t at, std::size_t count) const
{
    Text bytes(count, '\0');
    const auto got = file_->read(bytes.data(), count, static_cast<std::int64_t>(at));
    bytes.resize(static_cast<std::size_t>(std::max<std::ptrdiff_t>(got, 0)));
    return bytes;
}

Text FileBytes::read(std::uint64_t at, std::size_t count)
{
    count = within(*this, at, count);
    if (count > pieceSize)
        return freshly(at, count);
    if (at < pieceAt_ || at + count > pieceAt_ + piece_.size()) {
        piece_ = freshly(at, within(*this, at, pieceSize));
        pieceAt_ = at;
    }
    return piece_.substr(static_cast<std::size_t>(at - pieceAt_), count);
}

Text StretchOfBytes::read(std::uint64_t at, std::size_t count)
{
    return whole_.read(from_ + at, within(*this, at, count));
}

Text BytesInMemory::read(std::uint64_t at, std::size_t count)
{
    return bytes_.substr(std::min<std::size_t>(at, bytes_.size()), count);
}

}

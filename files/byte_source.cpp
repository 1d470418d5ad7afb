// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/byte_source.h"

#include "platform/failure.h"

#include <algorithm>

namespace files
{

namespace
{

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

Text FileBytes::read(std::uint64_t at, std::size_t count)
{
    Text bytes(within(*this, at, count), '\0');
    const auto got = window_.read(bytes.data(), bytes.size(), static_cast<std::int64_t>(at));
    bytes.resize(static_cast<std::size_t>(got));
    return bytes;
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

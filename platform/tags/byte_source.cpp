#include "platform/tags/byte_source.h"

#include <algorithm>
#include <cerrno>

#include <unistd.h>

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

Text FileBytes::readPast(std::uint64_t at, std::size_t count) const
{
    Text bytes(count, '\0');
    std::size_t done = 0;
    while (done < count) {
        const auto got = pread(descriptor_, bytes.data() + done, count - done, static_cast<off_t>(at + done));
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            break;
        done += static_cast<std::size_t>(got);
    }
    bytes.resize(done);
    return bytes;
}

Text FileBytes::read(std::uint64_t at, std::size_t count)
{
    count = within(*this, at, count);
    if (count > pieceSize)
        return readPast(at, count);
    if (at < pieceAt_ || at + count > pieceAt_ + piece_.size()) {
        piece_ = readPast(at, within(*this, at, pieceSize));
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

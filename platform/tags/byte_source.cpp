#include "platform/tags/byte_source.h"

#include "platform/failure.h"

#include <algorithm>

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
        throw Failure{57, "The file could not be read."};
    return bytes;
}

FileBytes::FileBytes(std::shared_ptr<const InputFile> file) :
    size_(static_cast<std::uint64_t>(file->size())), window_(std::move(file))
{
}

Text FileBytes::read(std::uint64_t at, std::size_t count)
{
    Text bytes(within(*this, at, count), '\0');
    const auto got = window_.read(bytes.data(), bytes.size(), static_cast<std::int64_t>(at));
    bytes.resize(static_cast<std::size_t>(std::max<std::ptrdiff_t>(got, 0)));
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

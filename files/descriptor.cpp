// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/descriptor.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <vector>

namespace files
{

namespace
{

constexpr std::size_t pieceBytes = 1 << 16;

template <typename Call>
ssize_t untilNotInterrupted(Call call)
{
    ssize_t done = 0;
    do
        done = call();
    while (done < 0 && errno == EINTR);
    return done;
}

}

std::ptrdiff_t readAt(const Descriptor& file, std::span<std::byte> into, std::int64_t at)
{
    std::size_t filled = 0;
    while (filled < into.size()) {
        const auto rest = into.subspan(filled);
        const auto got = untilNotInterrupted(
            [&] { return pread(file.number(), rest.data(), rest.size(), at + static_cast<off_t>(filled)); });
        if (got < 0)
            return -1;
        if (got == 0)
            break;
        filled += static_cast<std::size_t>(got);
    }
    return static_cast<std::ptrdiff_t>(filled);
}

Text bytesAt(const Descriptor& file, std::size_t count, std::int64_t at)
{
    Text bytes(count, '\0');
    const auto got = readAt(file, std::as_writable_bytes(std::span(bytes)), at);
    bytes.resize(static_cast<std::size_t>(std::max<std::ptrdiff_t>(got, 0)));
    return bytes;
}

bool writeAt(const Descriptor& file, std::span<const std::byte> bytes, std::int64_t at)
{
    while (!bytes.empty()) {
        const auto written =
            untilNotInterrupted([&] { return pwrite(file.number(), bytes.data(), bytes.size(), at); });
        if (written < 0)
            return false;
        bytes = bytes.subspan(static_cast<std::size_t>(written));
        at += written;
    }
    return true;
}

bool startForce(const Descriptor& file)
{
    sync_file_range(file.number(), 0, 0, SYNC_FILE_RANGE_WRITE);
    const int twin = dup(file.number());
    return twin < 0 || close(twin) == 0;
}

bool force(const Descriptor& file)
{
    return fdatasync(file.number()) == 0 || errno == EINVAL || errno == ENOSYS;
}

bool readRest(const Descriptor& file, Text& bytes)
{
    std::vector<char> piece(pieceBytes);
    for (;;) {
        const auto got = untilNotInterrupted([&] { return read(file.number(), piece.data(), piece.size()); });
        if (got <= 0)
            return got == 0;
        bytes.append(piece.data(), static_cast<std::size_t>(got));
    }
}

Text contentOf(const Text& path)
{
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    Text bytes;
    if (file)
        readRest(file, bytes);
    return bytes;
}

}

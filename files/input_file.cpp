// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/input_file.h"

#include "platform/failure.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>

namespace files
{

std::shared_ptr<const InputFile> InputFile::open(const Text& path)
{
    Descriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    if (!file)
        return nullptr;
    struct stat status {
    };
    if (fstat(file.number(), &status) == 0 && S_ISREG(status.st_mode))
        return std::shared_ptr<const InputFile>(new InputFile(std::move(file), status.st_size));
    errno = EINVAL;
    return nullptr;
}

std::shared_ptr<const InputFile> InputFile::openOrFail(const Text& path)
{
    if (auto file = open(path))
        return file;
    throw fileFailure(errno);
}

Failure brokenOff() { return {Trouble::deviceInputOutput, "It could not be read to its end."}; }

std::ptrdiff_t InputFile::read(void* into, std::size_t size, std::int64_t offset) const
{
    return readAt(file_, {static_cast<std::byte*>(into), size}, offset);
}

bool FileWindow::covers(std::int64_t offset) const { return offset >= start_ && offset < start_ + filled_; }

void FileWindow::moveTo(std::int64_t offset)
{
    start_ = offset;
    filled_ = std::max<std::ptrdiff_t>(file_->read(bytes_.get(), windowBytes, offset), 0);
    const auto promised = std::min(start_ + static_cast<std::int64_t>(windowBytes), file_->size());
    failed_ = failed_ || start_ + filled_ < promised;
}

const unsigned char* FileWindow::view(std::int64_t offset, std::size_t size)
{
    const std::int64_t end = offset + static_cast<std::int64_t>(size);
    if (offset < start_ || end > start_ + filled_)
        moveTo(offset);
    return end <= start_ + filled_ ? bytes_.get() + (offset - start_) : nullptr;
}

std::ptrdiff_t FileWindow::read(void* into, std::size_t size, std::int64_t offset)
{
    std::size_t done = 0;
    while (done < size) {
        const std::int64_t at = offset + static_cast<std::int64_t>(done);
        if (!covers(at)) {
            moveTo(at);
            if (filled_ == 0)
                break;
        }
        const auto part = std::min<std::size_t>(size - done, static_cast<std::size_t>(start_ + filled_ - at));
        std::memcpy(static_cast<char*>(into) + done, bytes_.get() + (at - start_), part);
        done += part;
    }
    return static_cast<std::ptrdiff_t>(done);
}

}

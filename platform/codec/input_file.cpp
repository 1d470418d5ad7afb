#include "platform/codec/input_file.h"

#include "platform/failure.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace codec
{

namespace
{

// A pipe or a device must neither block the opening nor be taken for a file.
std::int64_t regularSize(int descriptor)
{
    struct stat status;
    if (::fstat(descriptor, &status) != 0)
        throw fileFailure(errno);
    if (!S_ISREG(status.st_mode))
        throw failure(75);
    return status.st_size;
}

}

InputFile::InputFile(const Text& path) : descriptor_(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC))
{
    if (descriptor_ < 0)
        throw fileFailure(errno);
    try {
        size_ = regularSize(descriptor_);
    } catch (...) {
        ::close(descriptor_);
        throw;
    }
}

InputFile::~InputFile()
{
    ::close(descriptor_);
}

std::size_t InputFile::read(void* bytes, std::size_t count, std::int64_t at) const
{
    std::size_t have = 0;
    while (have < count) {
        const auto got = ::pread(descriptor_, static_cast<char*>(bytes) + have, count - have,
                                 at + static_cast<std::int64_t>(have));
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            throw failure(57);
        if (got == 0)
            break;
        have += static_cast<std::size_t>(got);
    }
    if (have < count && at + static_cast<std::int64_t>(have) < size_)
        throw failure(57);
    return have;
}

}

#include "platform/tags/open_file.h"

#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

OpenFile::OpenFile(OpenFile&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}

OpenFile& OpenFile::operator=(OpenFile&& other) noexcept
{
    std::swap(descriptor_, other.descriptor_);
    return *this;
}

OpenFile::~OpenFile()
{
    if (isOpen())
        close(descriptor_);
}

struct stat OpenFile::status() const
{
    struct stat status = {};
    fstat(descriptor_, &status);
    return status;
}

OpenFile openForReading(const Text& path)
{
    OpenFile file(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!file.isOpen() || S_ISREG(file.status().st_mode))
        return file;
    errno = EINVAL;
    return {};
}

bool writeAt(const OpenFile& file, const Text& bytes, off_t at)
{
    std::size_t done = 0;
    while (done < bytes.size()) {
        const auto wrote = pwrite(file.descriptor(), bytes.data() + done, bytes.size() - done,
                                  at + static_cast<off_t>(done));
        if (wrote < 0 && errno != EINTR)
            return false;
        done += wrote > 0 ? static_cast<std::size_t>(wrote) : 0;
    }
    return true;
}

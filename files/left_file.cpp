// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/left_file.h"

#include <fcntl.h>

#include <algorithm>
#include <ctime>

namespace files
{

namespace
{

constexpr off_t comparedBytes = 64;

Text lastBytes(const Descriptor& file, off_t size)
{
    return bytesAt(file, comparedBytes, std::max<off_t>(size - comparedBytes, 0));
}

bool same(const timespec& one, const timespec& other)
{
    return one.tv_sec == other.tv_sec && one.tv_nsec == other.tv_nsec;
}

bool same(const struct stat& one, const struct stat& other)
{
    return one.st_dev == other.st_dev && one.st_ino == other.st_ino && one.st_size == other.st_size &&
           same(one.st_mtim, other.st_mtim) && same(one.st_ctim, other.st_ctim);
}

}

LeftFile::LeftFile(std::uint64_t revision, Descriptor file, Trust trust) :
    revision_(revision), file_(std::move(file)), trust_(std::move(trust))
{
    trust_.begin();
    fstat(file_.number(), &status_);
    lastBytes_ = lastBytes(file_, status_.st_size);
}

bool LeftFile::holds(const Text& path, std::uint64_t revision)
{
    if (revision != revision_)
        return false;
    if (trust_.holds())
        return true;
    if (!isUntouched(path))
        return false;
    trust_.begin();
    return true;
}

bool LeftFile::isUntouched(const Text& path) const
{
    struct stat now;
    return stat(path.c_str(), &now) == 0 && same(now, status_) && lastBytes(file_, now.st_size) == lastBytes_;
}

// The system stamps a change with the time of its last tick. A finer time cannot be met by chance: whatever
// others write, even within the same tick, shows.
void stampPrecisely(const Descriptor& file)
{
    timespec times[2] = {{0, UTIME_OMIT}, {}};
    clock_gettime(CLOCK_REALTIME, &times[1]);
    futimens(file.number(), times);
}

}

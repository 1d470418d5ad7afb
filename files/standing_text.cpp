// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/standing_text.h"

#include <sys/stat.h>

#include <chrono>
#include <utility>

namespace files
{

namespace
{

constexpr std::chrono::milliseconds severalTicks{50};

std::chrono::nanoseconds sinceEpoch(const timespec& time)
{
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

bool holdsAt(const Descriptor& file, off_t at, std::string_view piece)
{
    return bytesAt(file, piece.size(), at) == piece;
}

}

StandingText::StandingText(Text path, Descriptor file) :
    path_(std::move(path)), file_(std::move(file)), same_(file_)
{
}

void StandingText::compare(std::string_view piece)
{
    same_ = same_ && holdsAt(file_, compared_, piece);
    compared_ += static_cast<off_t>(piece.size());
}

bool StandingText::isSame() const
{
    struct stat own;
    struct stat named;
    return same_ && fstat(file_.number(), &own) == 0 && own.st_size == compared_ &&
           stat(path_.c_str(), &named) == 0 && named.st_dev == own.st_dev && named.st_ino == own.st_ino;
}

bool StandingText::hasSettled() const
{
    struct stat status;
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return fstat(file_.number(), &status) == 0 && sinceEpoch(now) - sinceEpoch(status.st_ctim) > severalTicks;
}

}

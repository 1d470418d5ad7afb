// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/formats/source_file.h"

#include "platform/failure.h"

#include <cerrno>

namespace formats
{

SourceFile::SourceFile(const Text& path) : file_(files::InputFile::open(path))
{
    if (!file_)
        throw fileFailure(errno);
    size_ = file_->size();
}

std::size_t SourceFile::read(void* bytes, std::size_t count, std::int64_t at) const
{
    const auto read = file_->read(bytes, count, at);
    if (read < 0)
        throw Failure(Trouble::deviceInputOutput);
    const auto have = static_cast<std::size_t>(read);
    if (have < count && at + read < size_)
        throw Failure(Trouble::deviceInputOutput);
    return have;
}

}

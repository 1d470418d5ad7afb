// SPDX-License-Identifier: GPL-3.0-or-later
// The file that a conversion reads, from any thread: what it lacks is a failure, not an end.
#pragma once

#include "files/input_file.h"

namespace formats
{

class SourceFile
{
public:
    explicit SourceFile(const Text& path); // fails with 53, 70, 75 or 76

    std::int64_t size() const { return size_; } // bytes, when it was opened

    const std::shared_ptr<const files::InputFile>& file() const { return file_; }

    // Reads up to `count` bytes at `at`; fewer only at the end of the file. Fails with 57, also when the file
    // has become shorter since it was opened.
    std::size_t read(void* bytes, std::size_t count, std::int64_t at) const;

private:
    std::shared_ptr<const files::InputFile> file_;
    std::int64_t size_ = 0;
};

}

// A regular file, opened once and read at any place from any thread. Its descriptor stays the same file even
// if the name is given to another one meanwhile.
#pragma once

#include "platform/text.h"

#include <cstddef>
#include <cstdint>

namespace codec
{

class InputFile
{
public:
    explicit InputFile(const Text& path); // fails with 53, 70, 75 or 76
    ~InputFile();
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    std::int64_t size() const { return size_; } // bytes, when it was opened

    // Reads up to `count` bytes at `at`; fewer only at the end of the file. Fails with 57, also when the file
    // has become shorter since it was opened.
    std::size_t read(void* bytes, std::size_t count, std::int64_t at) const;

private:
    int descriptor_;
    std::int64_t size_ = 0;
};

}

// An open regular file.
#pragma once

#include "platform/text.h"

#include <sys/stat.h>

class OpenFile
{
public:
    OpenFile() = default;
    explicit OpenFile(int descriptor) : descriptor_(descriptor) {}
    OpenFile(OpenFile&& other) noexcept;
    OpenFile& operator=(OpenFile&& other) noexcept;
    ~OpenFile();

    bool isOpen() const { return descriptor_ >= 0; }
    int descriptor() const { return descriptor_; }
    struct stat status() const;

private:
    int descriptor_ = -1;
};

// Not open when there is no such file, or none that is regular: a pipe, a folder or a device is not waited
// for.
OpenFile openForReading(const Text& path);

// Writes all of `bytes` at `at`; false with the reason in errno.
bool writeAt(const OpenFile& file, const Text& bytes, off_t at);

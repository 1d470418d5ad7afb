// SPDX-License-Identifier: GPL-3.0-or-later
// Private profile files on the disk. Nothing is kept between calls: another program's change is seen at once.
#pragma once

#include "platform/profile_file.h"
#include "platform/text_files.h"

namespace files
{

class DiskProfileFile final : public ProfileFile
{
public:
    explicit DiskProfileFile(TextFiles& files) : files_(files) {}

    std::size_t read(const Text& section, const Text& key, const Text& fallback, char* buffer,
                     std::size_t size, const Text& file) override;
    bool write(const Text& section, const Text& key, const Text& value, const Text& file) override;

private:
    TextFiles& files_;
};

}

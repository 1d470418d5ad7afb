// SPDX-License-Identifier: GPL-3.0-or-later
// Private profile files on the disk. What is written again and again is compared with the disk once a second:
// another program's change of it is undone within that time. Reading sees it at once.
#pragma once

#include "files/trust.h"
#include "platform/complaint.h"
#include "platform/profile_file.h"
#include "platform/text_files.h"

namespace files
{

class DiskProfileFile final : public ProfileFile
{
public:
    explicit DiskProfileFile(TextFiles& files, Trust trust = Trust()) :
        files_(files), trust_(std::move(trust))
    {
    }

    std::size_t read(const Text& section, const Text& key, const Text& fallback, char* buffer,
                     std::size_t size, const Text& file) override;
    bool write(const Text& section, const Text& key, const Text& value, const Text& file) override;

private:
    struct Entry {
        Text section;
        Text key;
        Text value;
        Text file;

        bool operator==(const Entry&) const = default;
    };

    bool put(const Entry& entry);

    TextFiles& files_;
    Entry last_; // written, or found to be there
    Trust trust_;
    Complaint complaint_{"The settings of the list cannot be kept"};
};

}

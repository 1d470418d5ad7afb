// Text files on the disk. A file is replaced whole: a kill at any instant leaves the old one or the new one.
#pragma once

#include "files/left_file.h"
#include "platform/part_notes.h"
#include "platform/text_files.h"

#include <map>

// For one thread. Outlives the outputs that it opened.
class DiskTextFiles final : public TextFiles
{
public:
    explicit DiskTextFiles(PartNotes& notes) : notes_(notes) {}

    std::unique_ptr<TextOutput> openForOutput(const Text& path) override;
    bool stillHolds(const Text& path, std::uint64_t revision) override;
    void keepBackup(const Text& path, std::string_view bytes) override;
    std::int64_t length(const Text& path) override;
    Text readWhole(const Text& path) override;

private:
    void leave(const Text& path, std::uint64_t revision, Descriptor file);

    PartNotes& notes_;
    std::map<Text, LeftFile> left_; // those with a revision
};

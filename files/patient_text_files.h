// SPDX-License-Identifier: GPL-3.0-or-later
// Text files on disks that may not answer: each question has a thread of its own, and what has no answer in
// time fails with 68.
#pragma once

#include "files/errand.h"
#include "platform/text_files.h"

#include <chrono>

namespace files
{

// `files` is asked from several threads.
class PatientTextFiles final : public TextFiles
{
public:
    explicit PatientTextFiles(std::shared_ptr<TextFiles> files,
                              std::chrono::milliseconds patience = patienceForWriting) :
        files_(std::move(files)),
        patience_(patience)
    {
    }

    // Nothing is written, and no lack of room is found, before the output is finished. What was given up then
    // may still take its place when the disk comes back; until it has, the file is not written again.
    std::unique_ptr<TextOutput> openForOutput(const Text& path) override;

    // Asked many times a second of one file of the program's own, and not worth a thread.
    bool stillHolds(const Text& path, std::uint64_t revision) override
    {
        return files_->stillHolds(path, revision);
    }

    void keepBackup(const Text& path, std::string_view bytes) override;
    std::int64_t length(const Text& path) override;
    Text readWhole(const Text& path) override;

private:
    std::shared_ptr<TextFiles> files_;
    std::chrono::milliseconds patience_;
};

}

// SPDX-License-Identifier: GPL-3.0-or-later
// Text files on the disk. A file is replaced whole: a kill at any instant leaves the old one or the new one.
// Nobody waits until the disk has it, too.
#pragma once

#include "files/forces.h"
#include "files/left_file.h"
#include "platform/mutex.h"
#include "platform/part_notes.h"
#include "platform/text_files.h"

#include <functional>
#include <map>

namespace files
{

// From any thread; no output by two at a time. Outlives the outputs that it opened.
class DiskTextFiles final : public TextFiles
{
public:
    // `forceFailed` hears of a file that stands as it was written, and that the disk did not take for good.
    // `earlierContentKept` hears of a backup of what this process did not write: the user does not know that
    // it has gone.
    using BackupKept = std::function<void(const Text& backup)>;
    explicit DiskTextFiles(
        PartNotes& notes, BackupKept earlierContentKept = [](const Text&) {}, Trust trust = Trust(),
        Forces::Failed forceFailed = [](const Text&) {}) :
        notes_(notes),
        forces_(std::move(forceFailed)), earlierContentKept_(std::move(earlierContentKept)),
        trust_(std::move(trust))
    {
    }

    std::unique_ptr<TextOutput> openForOutput(const Text& path) override;
    bool stillHolds(const Text& path, std::uint64_t revision) override;
    void keepBackup(const Text& path, std::string_view bytes) override;
    std::int64_t length(const Text& path) override;
    Text readWhole(const Text& path) override;

private:
    bool isOwn(const Text& path);
    void leave(const Text& path, std::uint64_t revision, Descriptor file);

    PartNotes& notes_;
    Forces forces_;
    BackupKept earlierContentKept_;
    const Trust trust_;
    Mutex mutex_;
    std::map<Text, LeftFile> left_ GUARDED_BY(mutex_); // those with a revision
};

}

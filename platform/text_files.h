// SPDX-License-Identifier: GPL-3.0-or-later
// Plain text files, read and written whole. A file that is being written keeps its old content until
// `finish`.
#pragma once

#include "platform/text.h"

#include <cstdint>
#include <memory>
#include <string_view>

class TextOutput
{
public:
    virtual ~TextOutput() = default; // without `finish`: nothing is left behind, the old file stands

    virtual void write(std::string_view bytes) = 0; // fails with 57 or 61

    // The file now holds what was written. Fails with 57, 61, 70 or 75; the old file stands then.
    // A `revision` other than 0 names the content for `stillHolds`. Until the disk has it nobody waits.
    virtual void finish(std::uint64_t revision = 0) = 0;
};

class TextFiles
{
public:
    virtual ~TextFiles() = default;

    // Fails where plain output would: 53, 70, 75 or 76.
    virtual std::unique_ptr<TextOutput> openForOutput(const Text& path) = 0;

    // True when the file on the disk provably is what `finish` left there under this revision.
    virtual bool stillHolds(const Text& path, std::uint64_t revision) = 0;

    // Keeps `bytes` beside `path` under its name with ".bak" behind it, for the user's own use. Never fails.
    virtual void keepBackup(const Text& path, std::string_view bytes) = 0;

    virtual std::int64_t length(const Text& path) = 0; // bytes; fails with 53 or 70
    virtual Text readWhole(const Text& path) = 0;      // fails with 53, 57, 70 or 75
};

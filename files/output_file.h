// SPDX-License-Identifier: GPL-3.0-or-later
// A file in the making that a person waits for. It stands beside its target until it is whole; without that
// nothing is left behind, and what stood under the target's name stands there still.
#pragma once

#include "files/part_file.h"
#include "platform/part_notes.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace files
{

class OutputFile
{
public:
    // All fail with 57, 61, 70, 75 or 76.
    OutputFile(const Text& path, PartNotes& notes) : OutputFile(targetOf(path), notes) {}

    void makeRoom(std::int64_t bytes); // now, rather than that the disk is found full later
    void append(std::span<const std::byte> bytes);
    void write(std::span<const std::byte> bytes, std::int64_t at); // from any thread

    // The same once more, to write whole blocks of memory past the system's file cache. Without a descriptor
    // where the file system has no such way.
    Descriptor openPastCache() const;

    void startFlush(); // the disk begins with what was written, and nobody waits
    void flush();      // waits until the disk has what was written

    void takePlace(); // what was written is the target now

    // The same under another name in the folder. False when that name is taken.
    bool takeFreePlace(const Text& path);
    bool takeFreePlace() { return takeFreePlace(target_.path); } // the target's own

    // Everything written is on the disk, under the target's name.
    void finish();

    std::int64_t bytes() const { return bytes_; }         // appended so far
    const Text& partPath() const { return part_.path(); } // where it stands until then
    bool replacesFile() const { return target_.old.has_value(); }

private:
    struct Target {
        Text path; // without links
        std::optional<struct stat> old;
    };

    OutputFile(const Target& target, PartNotes& notes);
    static Target targetOf(const Text& path);

    Target target_;
    PartFile part_;
    std::int64_t bytes_ = 0;
};

}

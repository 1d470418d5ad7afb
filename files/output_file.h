// SPDX-License-Identifier: GPL-3.0-or-later
// The one way in which the program makes a file, or replaces one: written beside its place, forced to the
// disk, renamed. Until then what stood under its name stands there still; without that nothing is left
// behind, and what a killed program leaves is noted for the next start.
#pragma once

#include "files/descriptor.h"
#include "platform/failure.h"
#include "platform/part_notes.h"

#include <sys/stat.h>

#include <optional>

namespace files
{

// The folder takes no new file, or none that is like the old one: number 70, or 75 for a name too long.
struct FolderRefuses : Failure {
    using Failure::Failure;
};

class OutputFile
{
public:
    // Beside what `path` leads to, which is a plain file that may be written, or none. All fail with 57, 61,
    // 70, 75 or 76.
    OutputFile(const Text& path, PartNotes& notes) : OutputFile(targetOf(path), notes) {}

    // Beside `target`, which is no link, with mode and owner of `old` when there is one.
    OutputFile(Text target, const std::optional<struct stat>& old, PartNotes& notes);

    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    void makeRoom(std::int64_t bytes); // now, rather than that the disk is found full later
    void append(std::span<const std::byte> bytes);
    void write(std::span<const std::byte> bytes, std::int64_t at); // from any thread

    // The same once more, to write whole blocks of memory past the system's file cache. Without a descriptor
    // where the file system has no such way.
    Descriptor openPastCache() const;

    void startForce(); // the disk begins with what was written
    void force();      // waits until the disk has it

    // What was written is the target now. Waits for the disk, where else a power cut could leave the name
    // with none of the bytes.
    void takePlace();

    // The same under another name in the folder. False when that name is taken.
    bool takeFreePlace(const Text& path);
    bool takeFreePlace() { return takeFreePlace(target_); } // the target's own

    // All three, and the name outlasts a power cut, too.
    void finish();

    std::int64_t bytes() const { return bytes_; }  // appended so far
    const Text& partPath() const { return path_; } // where it stands until then
    const Descriptor& file() const { return file_; }
    Descriptor release() { return std::move(file_); }

private:
    struct Target {
        Text path; // without links
        std::optional<struct stat> old;
    };

    OutputFile(const Target& target, PartNotes& notes) : OutputFile(target.path, target.old, notes) {}
    static Target targetOf(const Text& path);
    bool resembles(const struct stat& old) const;
    void keepOrder();
    void forget();

    Text target_;
    Text path_;
    PartNotes& notes_;
    Descriptor file_;
    std::int64_t bytes_ = 0;
};

// For what the program keeps for itself: makes the folder, and waits for no disk.
void replaceFile(const Text& path, std::string_view bytes, PartNotes& notes);

// Without a step between in which another program could make a file under that name; false with EEXIST where
// something stands there.
bool renameWithoutReplacing(const Text& from, const Text& to);

// For a job that is told of under another file's name: the failure says that it is `named` that cannot be
// written.
OutputFile outputNamed(const Text& named, const Text& path, PartNotes& notes);

}

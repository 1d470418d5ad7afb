// SPDX-License-Identifier: GPL-3.0-or-later
// Changes the ends of a file in such a way that a crash at any moment leaves the old file or the new one,
// whole. Everything here fails with words for a person, and then the file is as it was.
#pragma once

#include "files/descriptor.h"
#include "platform/part_notes.h"

#include <sys/stat.h>

#include <cstdint>
#include <functional>

namespace files
{

// A regular file that stands at `path`, which is no symbolic link, and is open for reading.
struct StandingFile {
    Text path;
    const Descriptor& file;
    struct stat status; // when its bytes were looked at; a change since then makes everything here fail
};

// The bytes of a file from `begin` to `end` with new ones around them.
struct NewEnds {
    Text head;
    std::uint64_t begin = 0;
    std::uint64_t end = 0;
    Text tail;
};

// Fails where the file may not be written. A write-protected one is meant to stay as it is, also for a system
// administrator, who may write everything.
void requireWritable(const StandingFile& file);

// Puts a copy in the file's place, once `approve`, given the copy's path, has not failed. Mode, owner and
// extended attributes are kept; another hard link to the file goes on naming the old one. Fails with number
// 70 where the folder or the owner does not permit a copy. `step` is called as the copy comes on, and last
// before it takes the file's place; where it fails, the file stays.
void swapEnds(
    const StandingFile& file, const NewEnds& ends, PartNotes& notes,
    const std::function<void(const Text&)>& approve, const std::function<void()>& step = [] {});

// Writes over the file itself from `at` on: for few bytes, where no copy can be made.
void overwriteEnd(const StandingFile& file, std::uint64_t at, const Text& bytes);

// The failure of a system call that set an error number, with what was attempted in front of the reason.
[[noreturn]] void failWith(const char* attempt, int systemError);

}

// Changes the ends of a file in such a way that a crash at any moment leaves the old file or the new one,
// whole.
#pragma once

#include "platform/tags/open_file.h"

#include <cstdint>

// The bytes of a file from `begin` to `end` with new ones around them.
struct NewEnds {
    Text head;
    std::uint64_t begin = 0;
    std::uint64_t end = 0;
    Text tail;
};

// Puts a copy of `file`, which is open for reading and stands at `path` (no symbolic link), in its place.
// Mode, owner and extended attributes are kept; another hard link to the file goes on naming the old one.
// Copies that a crash left in the folder are removed. Fails with words for a person, and the file is as it
// was: with number 70 where the folder or the owner does not permit a copy, and when the file is no longer in
// the `known` state.
void swapEnds(const OpenFile& file, const Text& path, const struct stat& known, const NewEnds& ends);

// The failure of a system call that set errno, with what was attempted in front of the reason.
[[noreturn]] void failWith(const char* attempt, int systemError);

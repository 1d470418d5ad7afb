// SPDX-License-Identifier: GPL-3.0-or-later
// The two ways in which a text file comes onto the disk.
#pragma once

#include "files/left_file.h"
#include "files/output_file.h"
#include "files/standing_text.h"
#include "platform/text_files.h"

#include <functional>

namespace files
{

enum class DiskNeeds { nothing, force };

// Called by `finish` when the file stands, under its revision.
using FileLeft = std::function<void(std::uint64_t revision, Descriptor file, DiskNeeds needs)>;

// The usual one: beside the target, and renamed over it. `standing` is what stands there now, if anything:
// when it turns out to hold what was written, it stays.
std::unique_ptr<TextOutput> outputBeside(std::unique_ptr<OutputFile> part, StandingText standing,
                                         FileLeft left);

// For a file in a folder that takes no new ones, and for devices. `file` stands under `path`, open for
// writing and untouched.
std::unique_ptr<TextOutput> outputInPlace(const Text& path, Descriptor file, FileLeft left);

}

// SPDX-License-Identifier: GPL-3.0-or-later
// A file that is written beside its target and takes its place in one step, or leaves nothing.
#pragma once

#include "files/descriptor.h"
#include "platform/part_notes.h"

#include <sys/stat.h>

namespace files
{

// Without a step between in which another program could make a file under that name; false with EEXIST where
// something stands there.
bool renameWithoutReplacing(const Text& from, const Text& to);

class PartFile
{
public:
    // Makes the file, empty, with the mode and owner of the target's `status` when there is one. Without a
    // descriptor when that fails; `error` says why then.
    PartFile(const Text& target, const struct stat* status, PartNotes& notes);
    ~PartFile();

    PartFile(const PartFile&) = delete;
    PartFile& operator=(const PartFile&) = delete;

    int error() const { return error_; } // an error number of the system, or 0
    const Descriptor& file() const { return file_; }
    const Text& path() const { return path_; } // until it takes its place

    // The target is the file from now on. False when it is not, and the system's error number says why.
    bool takePlace();

    // The same under another name in the target's folder; with EEXIST where something stands under it.
    bool takeFreePlace(const Text& path);

    // Hands the descriptor over.
    Descriptor release() { return std::move(file_); }

private:
    bool resembles(const struct stat& status) const;
    void forget();

    Text target_;
    Text path_;
    PartNotes& notes_;
    Descriptor file_;
    int error_ = 0;
    bool noted_ = false;
    bool stands_ = false; // under its own name
};

}

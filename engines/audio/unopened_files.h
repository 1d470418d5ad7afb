// SPDX-License-Identifier: GPL-3.0-or-later
// What the engines could not open, told to the user: where a run waits for a file, no window says so.
#pragma once

#include "platform/text.h"

#include <map>

class Shell;

// Shared by the engines of one program, for its window thread. A file is tried again and again while a run
// waits for it: it is told of once for each reason, until it opens.
class UnopenedFiles
{
public:
    explicit UnopenedFiles(Shell& shell) : shell_(shell) {}

    // `kinds` is what it would have had to be, in words. An empty path is no file, and nothing is told.
    void failed(const Text& path, const char* kinds);
    void opened(const Text& path) { told_.erase(path); }

private:
    Shell& shell_;
    std::map<Text, Text> told_; // the reason by the path
};

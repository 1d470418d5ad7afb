// SPDX-License-Identifier: GPL-3.0-or-later
// What the engines could not open, told to the user: where a run waits for a file, no window says so.
#pragma once

#include "platform/text.h"

#include <chrono>
#include <functional>
#include <map>

class Shell;

namespace audio
{

// Shared by the engines of one program, for its window thread. A file is tried again and again while a run
// waits for it: it is told of once for each reason, until it opens; why it does not is looked for once a
// second.
class UnopenedFiles
{
public:
    using Time = std::chrono::steady_clock::time_point;

    explicit UnopenedFiles(Shell& shell, std::function<Time()> now = std::chrono::steady_clock::now) :
        shell_(shell), now_(std::move(now))
    {
    }

    // `kinds` is what it would have had to be, in words. An empty path is no file, and nothing is told.
    void failed(const Text& path, const char* kinds);
    void opened(const Text& path) { told_.erase(path); }

private:
    struct Told {
        Text reason;
        Time at; // it was last found so
    };

    Shell& shell_;
    std::function<Time()> now_;
    std::map<Text, Told> told_; // by the path
};

}

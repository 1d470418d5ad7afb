// SPDX-License-Identifier: GPL-3.0-or-later
// What stands in a folder, by name. No question waits longer than 200 ms for its answer.
#pragma once

#include "platform/text.h"

#include <chrono>
#include <functional>
#include <optional>
#include <vector>

namespace listing
{

using Names = std::vector<Text>;

bool isFolder(const Text& path); // false also for what does not answer

// Whether something is known of it by then, and be it that there is nothing.
bool answers(const Text& path, std::chrono::milliseconds limit);

// Asks for the names; `who` keeps the questions of two lists apart. Without an answer in time it is nothing,
// and `late` gets the names when they come, on a thread of its own. A folder that cannot be read has none.
struct Question {
    Text who;
    std::function<void(Names)> late;
};

// Sorted, without "." and "..", and without hidden folders.
std::optional<Names> foldersIn(const Text& folder, const Question& question);

// Sorted; the names that match `pattern` ("*" and "?" stand for any text and any character) without regard to
// case.
std::optional<Names> filesIn(const Text& folder, const Text& pattern, const Question& question);

// The folders from the root down to `path`, itself included.
Names pathDownTo(const Text& path);

Text homeFolder();

}

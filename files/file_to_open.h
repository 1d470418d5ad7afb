// SPDX-License-Identifier: GPL-3.0-or-later
// Which file a path means.
#pragma once

#include "files/errand.h"
#include "platform/text.h"

#include <functional>
#include <optional>

namespace files
{

// Which file that is, for whoever may wait: `path` where that exists; else the first entry of its folder, in
// the order of a scan, whose name differs from the path's last one in letters A to Z alone; else `path`
// again.
Text fileMeantBy(const Text& path);

// What is to be known of the file that `path` means, found and asked on a thread of its own. Nothing when
// that takes longer than two seconds, and at once while it has not answered an earlier question. `late` gets
// an answer that nobody waits for any more, on the thread that made it.
template <typename Answer>
std::optional<Answer> answerOfFile(
    const Text& path, const std::function<Answer(const Text& file)>& ask,
    const std::function<void(Answer)>& late = [](Answer) {})
{
    return answerWithin<Answer>(
        patienceForFiles, "file " + path, [path, ask] { return ask(fileMeantBy(path)); }, late);
}

// That file, which has answered; nothing when it does not.
std::optional<Text> fileToOpen(const Text& path);

}

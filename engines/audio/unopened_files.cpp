// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/audio/unopened_files.h"

#include "files/file_to_open.h"
#include "files/input_file.h"
#include "platform/shell.h"

#include <cerrno>

namespace audio
{

namespace
{

// A run that waits for a file tries it many times a second: to look for the reason costs as much as to try.
constexpr std::chrono::seconds betweenLooks{1};

struct Reason {
    int error;
    const char* words;
};

// clang-format off
constexpr Reason reasons[] = {
    {ENOENT,    "There is no such file."},
    {ENOTDIR,   "There is no such file."},
    {EACCES,    "It may not be read."},
    {EPERM,     "It may not be read."},
    {EINVAL,    "It is no file with sound in it."},
    {ETIMEDOUT, files::noAnswer},
    {EIO,       "The disk that it is on cannot be read."},
};
// clang-format on

const char* wordsFor(int error)
{
    for (const Reason& reason : reasons)
        if (reason.error == error)
            return reason.words;
    return "It cannot be read.";
}

Text reasonFor(const Text& path, const char* kinds)
{
    const auto error = files::answerOfFile<int>(
        path, [](const Text& file) { return files::InputFile::open(file) ? 0 : errno; });
    if (error != 0)
        return wordsFor(error.value_or(ETIMEDOUT));
    return Text("It is no ") + kinds + " file, or a damaged one.";
}

}

void UnopenedFiles::failed(const Text& path, const char* kinds)
{
    if (path.empty())
        return;
    const auto last = told_.find(path);
    if (last != told_.end() && now_() - last->second.at < betweenLooks)
        return;
    const Text before = last == told_.end() ? Text() : last->second.reason;
    const Text reason = reasonFor(path, kinds);
    told_[path] = {reason, now_()};
    if (reason != before)
        shell_.notify("A file cannot be opened", path + ": " + reason);
}

}

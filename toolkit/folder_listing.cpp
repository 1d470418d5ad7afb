// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolkit/folder_listing.h"

#include "files/errand.h"
#include "files/folders.h"
#include "platform/environment_variable.h"
#include "platform/paths.h"

#include <algorithm>
#include <filesystem>

namespace fs = std::filesystem;

namespace listing
{

namespace
{

template <typename Wanted>
Names namesIn(const Text& folder, Wanted&& wanted)
{
    Names names;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error))
        if (wanted(*entry))
            names.push_back(entry->path().filename().native());
    std::sort(names.begin(), names.end(), [](const Text& one, const Text& other) {
        return std::pair(lowerCase(one), one) < std::pair(lowerCase(other), other);
    });
    return names;
}

}

namespace
{

std::optional<bool> isFolderWithin(std::chrono::milliseconds limit, const Text& path)
{
    const auto look = [path] { return files::isFolder(path); };
    return files::answerWithin<bool>(limit, "folder " + path, look);
}

}

bool isFolder(const Text& path) { return isFolderWithin(files::patienceForLists, path).value_or(false); }

bool answers(const Text& path, std::chrono::milliseconds limit)
{
    return isFolderWithin(limit, path).has_value();
}

std::optional<Names> foldersIn(const Text& folder, const Question& question)
{
    const auto read = [folder] {
        return namesIn(folder, [](const fs::directory_entry& entry) {
            std::error_code error;
            return entry.is_directory(error) && !entry.path().filename().native().starts_with('.');
        });
    };
    return files::answerWithin<Names>(files::patienceForLists, question.who + " folders " + folder, read,
                                      question.late);
}

std::optional<Names> filesIn(const Text& folder, const Text& pattern, const Question& question)
{
    const auto read = [folder, pattern] {
        return namesIn(folder, [&](const fs::directory_entry& entry) {
            std::error_code error;
            return !entry.is_directory(error) && files::fits(entry.path().filename().native(), pattern);
        });
    };
    return files::answerWithin<Names>(files::patienceForLists, question.who + " files " + folder, read,
                                      question.late);
}

Names pathDownTo(const Text& path)
{
    Names folders{Text(driveRoot)};
    for (std::size_t at = path.find_first_not_of(pathSeparator); at != Text::npos;) {
        const std::size_t end = path.find(pathSeparator, at);
        folders.push_back(path.substr(0, end));
        at = path.find_first_not_of(pathSeparator, end);
    }
    return folders;
}

Text homeFolder()
{
    const Text home = environmentVariable("HOME");
    return isFolder(home) ? home : Text(driveRoot);
}

}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/disc/track_path.h"

#include "files/folders.h"
#include "platform/numbers.h"
#include "platform/paths.h"

#include <unistd.h>

namespace disc
{

namespace
{

constexpr std::string_view ending = ".wav";
constexpr std::size_t usualBytes = 255;
constexpr std::size_t mostUnits = 255; // of 16 bits, on the file systems of other platforms

std::size_t mostBytes(const Text& folder)
{
    const long most = pathconf(folder.c_str(), _PC_NAME_MAX);
    return most > 0 ? static_cast<std::size_t>(most) : usualBytes;
}

// As many as UTF-16 takes.
std::size_t units(std::string_view name)
{
    constexpr std::size_t bytesOfPair = 4;
    std::size_t count = 0;
    for (std::size_t at = 0; at < name.size(); at += characterBytes(name, at))
        count += characterBytes(name, at) == bytesOfPair ? 2U : 1U;
    return count;
}

bool isTitled(std::string_view name, std::int16_t track)
{
    return name.starts_with(twoDigits(track) + " - ") && name.ends_with(ending);
}

// The beginning that fits, whole characters, without the blanks that a cut leaves at its end.
Text beginning(std::string_view name, std::size_t bytes)
{
    std::size_t end = 0;
    for (std::size_t next = 0; next <= bytes && units(name.substr(0, next)) <= mostUnits - ending.size();) {
        end = next;
        next += characterBytes(name, end);
        if (next == end)
            break;
    }
    Text kept(name.substr(0, end));
    while (kept.ends_with(' '))
        kept.pop_back();
    return kept;
}

}

Text fittingTrackPath(const Text& path, std::int16_t track)
{
    const std::string_view name = fileTitle(path);
    const std::size_t most = mostBytes(files::folderOf(path));
    const bool fits = name.size() <= most && units(name) <= mostUnits;
    if (fits || !isTitled(name, track))
        return path;
    const auto title = name.substr(0, name.size() - ending.size());
    return path.substr(0, path.size() - name.size()) + beginning(title, most - ending.size()).append(ending);
}

}

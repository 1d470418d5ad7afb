// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/lost_parts.h"

#include "files/folders.h"
#include "platform/paths.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <ctime>

namespace files
{

namespace
{

constexpr std::string_view ending = ".part";
constexpr std::size_t digits = 16;

// What the parts of one target have in common: the name up to the digits.
std::string_view beginningOf(std::string_view name)
{
    const std::size_t behind = digits + ending.size();
    return name.size() > behind ? name.substr(0, name.size() - behind) : std::string_view();
}

bool isPartOf(std::string_view beginning, std::string_view name)
{
    return name.ends_with(ending) && !beginning.empty() && beginningOf(name) == beginning &&
           name.substr(beginning.size(), digits).find_first_not_of("0123456789abcdef") == Text::npos;
}

std::time_t startOfMachine()
{
    timespec now{};
    timespec running{};
    clock_gettime(CLOCK_REALTIME, &now);
    clock_gettime(CLOCK_BOOTTIME, &running);
    return now.tv_sec - running.tv_sec;
}

bool isOfEarlierRun(const Text& path)
{
    struct stat status;
    return lstat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
           status.st_mtim.tv_sec < startOfMachine();
}

}

void removeLostParts(const Text& partPath)
{
    const Text folder = folderOf(partPath);
    const Text own(fileTitle(partPath));
    for (const Text& name : namesIn(folder))
        if (isPartOf(beginningOf(own), name) && isOfEarlierRun(joined(folder, name)))
            unlink(joined(folder, name).c_str());
}

}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/file_names.h"

#include "platform/failure.h"
#include "platform/paths.h"

#include <limits>

Text cleanFileName(std::string_view name)
{
    constexpr std::string_view forbidden = "\\/:*?\"<>|";
    Text clean(name);
    for (auto& character : clean)
        if (forbidden.find(character) != std::string_view::npos)
            character = '_';
    return clean;
}

Text rippedFilePath(std::string_view directory, std::string_view name)
{
    Text path(directory);
    if (characterCount(directory) != driveRoot.size())
        path += pathSeparator;
    return path.append(name).append(".wav");
}

float percentOf(std::int32_t position, std::int32_t length)
{
    const std::int64_t product = static_cast<std::int64_t>(position) * 100;
    if (product > std::numeric_limits<std::int32_t>::max() ||
        product < std::numeric_limits<std::int32_t>::min())
        throw Failure(Trouble::overflow);
    return static_cast<float>(static_cast<double>(product) / length);
}

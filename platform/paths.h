// SPDX-License-Identifier: GPL-3.0-or-later
// Paths as this platform writes them.
#pragma once

#include "platform/text.h"

#include <string_view>

inline constexpr char pathSeparator = '/';
inline constexpr std::string_view driveRoot = "/";

// The drive that the defaults name, in the two forms in which they name it.
inline constexpr std::string_view defaultDrive = "/";
inline constexpr std::string_view defaultDriveWithoutSeparator = "/";

inline bool endsInSeparator(std::string_view path) { return path.ends_with(pathSeparator); }

// `folder`, a separator unless it ends in one, and `name`.
inline Text joined(std::string_view folder, std::string_view name)
{
    Text path(folder);
    if (!endsInSeparator(path))
        path += pathSeparator;
    return path.append(name);
}

// What follows the last separator.
inline std::string_view fileTitle(std::string_view path)
{
    return path.substr(path.rfind(pathSeparator) + 1);
}

// SPDX-License-Identifier: GPL-3.0-or-later
// Where the playlist window keeps its two values: the settings file in the application folder.
#pragma once

namespace ini
{
inline constexpr const char* file = "vlmset.ini";
inline constexpr const char* section = "Playlist Editor";
inline constexpr const char* playList = "PlayList";
inline constexpr const char* fileType = "FileType";
}

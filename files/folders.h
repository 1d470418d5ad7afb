// SPDX-License-Identifier: GPL-3.0-or-later
// Small questions to the file system, shared by the services of this folder.
#pragma once

#include "platform/text.h"

#include <vector>

namespace files
{

// Makes the folder and those above it, for the user alone. False when it does not exist afterwards.
bool makeFolders(const Text& folder);

bool isFolder(const Text& path);
bool isFile(const Text& path);       // a regular one, links followed
bool isExecutable(const Text& path); // a file that this user may run

// True when both names lead to one file, also through links.
bool isSameFile(const Text& one, const Text& other);

// The names in the folder outlive a power cut from now on; a folder that cannot be read is left to the
// system's own time.
void syncFolder(const Text& folder);

// Whether a file list with this pattern has the name, as the shell judges it but for the case of letters.
// "*.*" has every name, also one without a dot.
bool fits(const Text& name, const Text& pattern);

// Without separators at its end; a drive root stays.
Text withoutSeparatorBehind(Text path);

// What a path's last name lies in; "." for a name alone.
Text folderOf(const Text& path);

// The path itself, or what it leads to when it is a link, existing or not. "" for links in a ring.
Text resolvedLinks(const Text& path);

// A name that nobody else chooses: sixteen hexadecimal digits.
Text randomName();

// The names in a folder but for "." and "..".
std::vector<Text> namesIn(const Text& folder);

}

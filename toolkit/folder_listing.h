// What stands in a folder, by name.
#pragma once

#include "platform/text.h"

#include <vector>

namespace listing
{

bool isFolder(const Text& path);

// Sorted, without "." and "..", and without hidden folders. Nothing for a folder that cannot be read.
std::vector<Text> foldersIn(const Text& folder);

// Sorted; the names that match `pattern` ("*" and "?" stand for any text and any character) without regard to
// case.
std::vector<Text> filesIn(const Text& folder, const Text& pattern);

// The folders from the root down to `path`, itself included.
std::vector<Text> pathDownTo(const Text& path);

Text homeFolder();

}

// SPDX-License-Identifier: GPL-3.0-or-later
// Whole files and the names in folders, for tests.
#pragma once

#include "platform/text.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>

inline void putFile(const Text& path, std::string_view bytes)
{
    std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

// "" for a missing file.
inline Text fileBytes(const Text& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline std::set<Text> namesInFolder(const Text& folder)
{
    std::set<Text> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        names.insert(entry.path().filename());
    return names;
}

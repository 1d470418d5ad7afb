// SPDX-License-Identifier: GPL-3.0-or-later
// Whole files and the names in folders, for tests.
#pragma once

#include "platform/text.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>

inline void putFile(const Text& path, std::string_view bytes)
{
    std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

// "" for a missing file. At once: tests are not optimised, and byte by byte takes longer than the decoding.
inline Text fileBytes(const Text& path)
{
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    Text bytes(static_cast<std::size_t>(std::max<std::streamoff>(file.tellg(), 0)), '\0');
    file.seekg(0);
    file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    bytes.resize(static_cast<std::size_t>(file.gcount()));
    return bytes;
}

inline std::set<Text> namesInFolder(const Text& folder)
{
    std::set<Text> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        names.insert(entry.path().filename());
    return names;
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/audio/level_file.h"

#include <cstdio>
#include <filesystem>
#include <fstream>

namespace audio
{

Levels::Pair LevelFile::read() const
{
    Levels::Pair pair;
    std::ifstream file(path_);
    if (file >> pair.left >> pair.right)
        return pair;
    return {};
}

void LevelFile::write(Levels::Pair levels) const
{
    std::error_code ignored;
    std::filesystem::create_directories(std::filesystem::path(path_).parent_path(), ignored);
    const Text part = path_ + ".part";
    std::ofstream file(part, std::ios::trunc);
    file << levels.left << ' ' << levels.right << '\n';
    file.close();
    if (!file || std::rename(part.c_str(), path_.c_str()) != 0)
        std::remove(part.c_str());
}

}

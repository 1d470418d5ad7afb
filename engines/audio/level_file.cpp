// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/audio/level_file.h"

#include "files/output_file.h"
#include "platform/numbers.h"

#include <sstream>

namespace audio
{

Levels::Pair LevelFile::read() const
{
    Levels::Pair pair;
    std::istringstream words(files::contentOf(path_));
    if (words >> pair.left >> pair.right)
        return pair;
    return {};
}

void LevelFile::write(Levels::Pair levels)
{
    const Text line = textOf(levels.left) + ' ' + textOf(levels.right) + '\n';
    complaint_.unless([&] { files::replaceFile(path_, line, notes_); });
}

}

// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as the kept volume: what it says is heard within its bounds, and is kept as it was read.
#include "engines/audio/level_file.h"
#include "tests/fuzz/input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    audio::LevelFile file(memory() / "levels", NoPartNotes::instance());
    putFile(memory() / "levels", asText(bytes, size));
    const auto read = file.read();
    audio::Levels levels;
    levels.set(read);
    for (const auto level : {levels.get().left, levels.get().right})
        require(level >= 0 && level <= 100);
    file.write(read);
    require(file.read() == read);
    return 0;
}

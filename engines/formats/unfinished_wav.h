// WAV files whose writer died before it filled in their sizes.
#pragma once

#include "engines/formats/source_file.h"

#include <cstdint>
#include <optional>

namespace codec
{

// Where the size of the sound stands, in a file that gives it as 0 although sound follows; nullopt in every
// other.
std::optional<std::int64_t> unfilledSoundSize(const SourceFile& file);

}

// Whether a file holds MP3 audio, by its frame headers (ISO/IEC 11172-3 and 13818-3, Layer III).
#pragma once

#include "platform/tags/byte_source.h"

// Whether Layer III frames begin within 64 KB after `from`: four that follow each other, or fewer that fill
// the bytes up to `to`. Files of another kind that begin there are refused, whatever they contain further on.
bool holdsMp3(ByteSource& file, std::uint64_t from, std::uint64_t to);

// A disc as the CDDB knows it: by where its tracks begin.
#pragma once

#include "platform/text.h"

#include <cstdint>
#include <vector>

// In sectors of 1/75 s counted from the disc's very beginning (00:00:00), so that the first track of most
// discs begins at 150. Every track counts, data tracks and those of later sessions too; the lead-out is the
// last session's.
struct CddbDisc {
    std::vector<std::int32_t> trackStarts;
    std::int32_t leadOut = 0;
};

// The disc's eight hexadecimal digits (the freedb "CDDB DISCID" algorithm).
Text discId(const CddbDisc& disc);

// The command that asks for the disc's entries: "cddb query ID TRACKS START... SECONDS".
Text queryCommand(const CddbDisc& disc);

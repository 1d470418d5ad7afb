// Genre numbers of ID3v1 and their names.
#pragma once

#include "platform/text.h"

#include <cstdint>

// "" for -1, "Unknown" for 80, the usual names otherwise; "" for a number without a name.
Text genreName(std::int16_t genre);

// SPDX-License-Identifier: GPL-3.0-or-later
// One row of the track list.
#pragma once

#include "platform/text.h"

#include <cstdint>

// Name, time and size in megabytes, four blanks apart. The time text has a comma between minutes and seconds,
// and the system's decimal sign decides what it means: a decimal comma makes the seconds a fraction, any
// other sign drops the comma and joins the digits. The size counts that number as minutes of CD audio.
Text trackLine(const Text& name, std::int32_t minutes, std::int32_t seconds, const Text& decimalSign);

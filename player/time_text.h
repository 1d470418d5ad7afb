// SPDX-License-Identifier: GPL-3.0-or-later
// Times as the player shows them.
#pragma once

#include "platform/text.h"

#include <cstdint>

// Both of a time in milliseconds: whole minutes without an end, and the seconds beside them in two digits.
Text wholeMinutes(std::int32_t milliseconds);
Text twoDigitSeconds(std::int32_t milliseconds);

// The share of a file that has played, in whole per cent. The last half per cent counts as 0, so that the bar
// is back at its start when a file ends. 0 for a length of 0. Both times in milliseconds, as decimal text.
std::int32_t barValue(const Text& elapsed, const Text& total);

// SPDX-License-Identifier: GPL-3.0-or-later
// The key codes that the program's handlers know. For the toolkit's own sources alone.
#pragma once

#include <cstdint>

class QKeyEvent;
class QInputEvent;

// A letter's code is that of its capital, in every keyboard layout: a layout without Latin letters counts by
// the key's place. 0 for a key without a code of its own.
std::int16_t keyCodeOf(const QKeyEvent& event);

// 1 for Shift, 2 for Control, 4 for Alt.
std::int16_t shiftStateOf(const QInputEvent& event);

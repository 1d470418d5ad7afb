// SPDX-License-Identifier: GPL-3.0-or-later
// The plain message boxes.
#pragma once

#include "platform/text.h"

class MessageBoxes
{
public:
    enum class Icon { none, critical, exclamation };
    enum class Buttons { ok, okCancel, yesNo };
    enum class Answer { ok, cancel, yes, no };

    virtual ~MessageBoxes() = default;

    // Modal; returns when answered. Closing the box is Cancel, where it has one; a question of Yes and No
    // stays until one of them is pressed. Timers go on behind it.
    virtual Answer show(const Text& text, const Text& title, Icon icon, Buttons buttons) = 0;
};

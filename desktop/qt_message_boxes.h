// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/message_boxes.h"

namespace desktop
{

class QtMessageBoxes final : public MessageBoxes
{
public:
    Answer show(const Text& text, const Text& title, Icon icon, Buttons buttons) override;
};

}

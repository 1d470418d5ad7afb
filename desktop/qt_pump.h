// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/pump.h"

namespace desktop
{

class QtPump final : public Pump
{
public:
    void turn() override;
    [[noreturn]] void standStill() override;
};

}

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "toolkit/control.h"

class QProgressBar;

namespace ctl
{

// From 0 to 100; what is set is held to that range.
class ProgressBar final : public ControlOf<QProgressBar>
{
public:
    ProgressBar(Container& container, const char* name, Place place);

    float Value() const { return value_; }
    void setValue(float value);
    float Max() const { return 100; }

private:
    float value_ = 0;
};

}

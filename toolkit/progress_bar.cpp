// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolkit/progress_bar.h"

#include <QProgressBar>
#include <algorithm>
#include <cmath>

namespace
{

// The bar's own steps to the unit: one pixel is the finest that can be seen.
constexpr int steps = 10;

}

namespace ctl
{

ProgressBar::ProgressBar(Container& container, const char* name, Place place) :
    Control(container, name, place, new QProgressBar)
{
    auto* bar = static_cast<QProgressBar*>(widget_);
    bar->setRange(0, 100 * steps);
    bar->setTextVisible(false);
}

void ProgressBar::setValue(float value)
{
    value_ = std::clamp(value, 0.0F, Max());
    static_cast<QProgressBar*>(widget_)->setValue(static_cast<int>(std::lround(value_ * steps)));
}

}

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
    ControlOf(container, name, place, new QProgressBar)
{
    widget_->setRange(0, 100 * steps);
    widget_->setTextVisible(false);
}

void ProgressBar::setValue(float value)
{
    value_ = std::clamp(value, 0.0F, Max());
    widget_->setValue(static_cast<int>(std::lround(value_ * steps)));
}

}

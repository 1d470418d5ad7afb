// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolkit/slider.h"

#include "platform/failure.h"
#include "toolkit/image_widget.h"

#include <QAccessible>
#include <QWidget>
#include <algorithm>

namespace ctl
{

Slider::Slider(Container& container, const char* name, std::int32_t min, std::int32_t max, std::int32_t value,
               const Text& toolTip) :
    Control(container, name, hidden),
    min_(min), max_(max), value_(value)
{
    setToolTipText(toolTip);
}

void Slider::setValue(std::int32_t value)
{
    if (value < min_ || value > max_)
        throw Failure(Trouble::invalidPropertyValue);
    take(value);
}

// Who cannot see the thumb move hears of it, whoever moved it.
void Slider::take(std::int32_t value)
{
    if (std::exchange(value_, value) == value || !thumb_)
        return;
    QAccessibleValueChangeEvent changed(thumb_->widget_, value_);
    QAccessible::updateAccessibility(&changed);
}

void Slider::showBy(Image& thumb, Image& track)
{
    thumb_ = &thumb;
    track_ = &track;
    thumb.standsFor(*this, track);
}

// The thumb first: the handler may wait for long.
void Slider::moveByUser(std::int32_t value)
{
    const auto inRange = std::clamp(value, min_, max_);
    if (value_ == inRange)
        return;
    take(inRange);
    placeThumb();
    fromOutside([this] { Scroll.raise(); });
}

void Slider::placeThumb()
{
    if (!thumb_)
        return;
    const Twips travel = track_->Width() - thumb_->Width();
    const double share = static_cast<double>(value_ - min_) / (max_ - min_);
    thumb_->setLeft(static_cast<Twips>(travel * share) + track_->Left());
}

}

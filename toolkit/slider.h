// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "toolkit/control.h"

namespace ctl
{

class Image;

// A hidden slider: it keeps the number of a bar that is drawn by pictures. A value set from code raises
// nothing; all its events are the user's own.
class Slider final : public Control
{
public:
    Slider(Container& container, const char* name, std::int32_t min, std::int32_t max, std::int32_t value,
           const Text& toolTip = {});

    std::int32_t Value() const { return value_; }
    void setValue(std::int32_t value); // fails with 380 outside Min and Max
    std::int32_t Min() const { return min_; }
    std::int32_t Max() const { return max_; }

    // The pictures that stand for it: `thumb` takes its keys, and the user's own moves place it along
    // `track`.
    void showBy(Image& thumb, Image& track);

    // The user's own move, by a key or through assistive technology: brought into the range; a value that
    // changes places the thumb and raises `Scroll`.
    void moveByUser(std::int32_t value);

    Event<> Scroll;
    Event<> MouseDown;
    Event<> MouseUp;
    Event<std::int16_t> KeyDown; // key code
    Event<std::int16_t> KeyUp;

private:
    friend class ImageWidget;

    void take(std::int32_t value);
    void placeThumb();

    std::int32_t min_;
    std::int32_t max_;
    std::int32_t value_;
    Image* thumb_ = nullptr;
    Image* track_ = nullptr;
};

}

#pragma once

#include "toolkit/control.h"

namespace ctl
{

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

    Event<> Scroll;
    Event<> MouseDown;
    Event<> MouseUp;
    Event<std::int16_t> KeyDown; // key code
    Event<std::int16_t> KeyUp;

private:
    std::int32_t min_;
    std::int32_t max_;
    std::int32_t value_;
};

}

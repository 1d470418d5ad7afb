#include "toolkit/slider.h"

#include "platform/failure.h"

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
        throw failure(380);
    value_ = value;
}

}

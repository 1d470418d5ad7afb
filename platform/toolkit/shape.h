#pragma once

#include "platform/toolkit/control.h"

namespace ctl
{

// A rectangle that frames other controls.
class Shape final : public Control
{
public:
    Shape(Container& container, const char* name, Place place);
};

}

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "toolkit/control.h"

class QFrame;

namespace ctl
{

// A rectangle on a form that frames other controls.
class Shape final : public Control
{
public:
    Shape(Form& form, const char* name, Place place);
};

// A level rule between other controls.
class Line final : public ControlOf<QFrame>
{
public:
    Line(Container& container, const char* name, Place place);
};

}

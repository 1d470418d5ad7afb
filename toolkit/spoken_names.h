// SPDX-License-Identifier: GPL-3.0-or-later
// What a screen reader calls the controls that bear no caption.
#pragma once

#include <initializer_list>

class Form;

namespace ctl
{

class Control;

struct SpokenName {
    const Control& control;
    const char* name;
};

// These names stay, whatever a tool tip says meanwhile.
void setSpokenNames(Form& form, std::initializer_list<SpokenName> names);

}

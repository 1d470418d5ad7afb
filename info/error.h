// SPDX-License-Identifier: GPL-3.0-or-later
// The common message window: whoever has a message sets the label and shows the window.
#pragma once

#include "toolkit/buttons.h"
#include "toolkit/form.h"
#include "toolkit/label.h"

class Program;

class Error final : public Form
{
public:
    explicit Error(Program& program);

    // clang-format off
    ctl::Label         lblerror{*this, "lblerror", { 120_tw,  120_tw, 3975_tw, 255_tw}, "ERROR:"};
    ctl::Label         theerror{*this, "theerror", { 120_tw,  360_tw, 3855_tw, 735_tw}};
    ctl::CommandButton okbutton{*this, "okbutton", {1320_tw, 1230_tw, 1455_tw, 375_tw}, "OK",
                                ctl::CommandButton::Keys::escape};
    // clang-format on

    void okbutton_Click();
};

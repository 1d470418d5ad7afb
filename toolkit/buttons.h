// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "toolkit/control.h"

#include <cstdint>

class QPushButton;
class QRadioButton;
class QCheckBox;

namespace ctl
{

// "&" in a caption marks the access key.
class CommandButton final : public ControlOf<QPushButton>
{
public:
    // What besides a click presses the button while its window is active; the one that is in sight, where
    // several tabs have one. Enter presses any button that has the focus.
    enum class Keys { none, escape, enterAndEscape };

    CommandButton(Container& container, const char* name, Place place, const Text& caption,
                  Keys keys = Keys::none);

    Event<> Click;
};

// One of a group: that of its container. A button that becomes the chosen one raises its click, from code as
// well; the one that it switches off raises nothing.
class OptionButton final : public ControlOf<QRadioButton>
{
public:
    OptionButton(Container& container, const char* name, Place place, const Text& caption);

    Event<> Click;

    bool Value() const;
    void setValue(bool value);
};

class CheckBox final : public ControlOf<QCheckBox>
{
public:
    CheckBox(Container& container, const char* name, Place place, const Text& caption,
             const Text& toolTip = {});

    Event<> Click; // the value became another one, by a click or from code

    std::int16_t Value() const;        // 0 or 1
    void setValue(std::int16_t value); // fails with 380 for anything else
};

}

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "toolkit/control.h"

#include <cstdint>

class QComboBox;

namespace ctl
{

// A drop-down list of rows without free text.
class ComboBox final : public ControlOf<QComboBox>
{
public:
    ComboBox(Container& container, const char* name, Place place);

    Event<> Click; // another row was chosen, by the user or from code

    void AddItem(const Text& text);
    std::int32_t ListCount() const;

    std::int32_t ListIndex() const;        // -1: none
    void setListIndex(std::int32_t index); // fails with 380 outside -1..ListCount-1
};

}

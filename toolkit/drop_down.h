// SPDX-License-Identifier: GPL-3.0-or-later
// A drop-down list in a window that obeys Escape. For the toolkit's own sources.
#pragma once

#include "toolkit/form_widget.h"

#include <QAbstractItemView>
#include <QComboBox>

namespace ctl
{

// The Escape that closes the open list has done its work then: the window below shall not hear of it.
class DropDown : public QComboBox
{
public:
    void hidePopup() override
    {
        if (view()->isVisible())
            static_cast<FormWidget*>(window())->ignoreKeyAtWork();
        QComboBox::hidePopup();
    }
};

}

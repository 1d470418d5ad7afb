// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolkit/menu_below.h"

#include "platform/numbers.h"

void showMenuBelow(PopupMenu& menu, const ctl::Image& image, const Text& treeName)
{
    const auto left = roundToInteger32(image.Left());
    const auto top = roundToInteger32(image.Top());
    const auto right = roundToInteger32(image.Left() + image.Width());
    const auto bottom = roundToInteger32(image.Top() + image.Height());
    menu.Restore(treeName);
    menu.ShowPopupMenu(left, bottom, left, top, right, bottom, true);
    menu.Store(treeName);
}

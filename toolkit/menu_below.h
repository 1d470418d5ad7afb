// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/popup_menu.h"
#include "toolkit/image.h"

// Shows the tree kept under that name directly below the image that stands for it.
void showMenuBelow(PopupMenu& menu, const ctl::Image& image, const Text& treeName);

// SPDX-License-Identifier: GPL-3.0-or-later
// Where the main window stands before it was ever moved.
#pragma once

#include "platform/twips.h"

// Along one side of the screen: from where the screen begins, half the space that the window leaves.
Twips centred(Twips screenStart, Twips screen, Twips window);

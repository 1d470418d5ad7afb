// SPDX-License-Identifier: GPL-3.0-or-later
#include "player/first_place.h"

Twips centred(Twips screenStart, Twips screen, Twips window)
{
    return screenStart + (screen / 2 - window / 2);
}

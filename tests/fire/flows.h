// SPDX-License-Identifier: GPL-3.0-or-later
// The flows, by the files that have them.
#pragma once

#include "tests/fire/ground.h"

extern const Flows songFlows;  // tags and conversions
extern const Flows discFlows;  // tracks, images, titles
extern const Flows stateFlows; // what the program keeps for itself
extern const Flows listFlows;  // through the list's window

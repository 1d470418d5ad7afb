// SPDX-License-Identifier: GPL-3.0-or-later
// The flows that need no window, on the real parts: fire_flow FLOW FOLDER [furnish].
#include "tests/fire/flows.h"

int main(int argc, char** argv) { return runFlow({songFlows, discFlows, stateFlows}, argc, argv); }

// SPDX-License-Identifier: GPL-3.0-or-later
// The flows that go through a window: fire_window FLOW FOLDER [furnish].
#include "tests/fire/flows.h"

int main(int argc, char** argv) { return runFlow({listFlows}, argc, argv); }

// SPDX-License-Identifier: GPL-3.0-or-later
// The toolkit's own widgets for those who cannot see them: windows are windows, pictures are buttons, sliders
// or nothing. For the toolkit's own sources.
#pragma once

// A widget's property: its accessible name is not that of its tool tip.
inline constexpr const char* hasSpokenName = "hasSpokenName";

void makeWidgetsAccessible();

// SPDX-License-Identifier: GPL-3.0-or-later
// Two windows that stand edge to edge, on screens whose pixels are no whole part of the windows' own: at 1.5,
// every other place falls between two of the screen's pixels. For the toolkit's own sources alone.
#pragma once

#include <optional>

class FormWidget;

// One direction of one window: where it begins and how long it is, in the windows' own pixels.
struct Span {
    int from;
    int length;
};

// In the screen's pixels: where the first and the second are to begin so that they meet, the second behind
// the first. Each stays within the pixel that it was put on. Nothing where they meet already, or cannot.
struct Meeting {
    int first;
    int second;
};
std::optional<Meeting> meetingOf(Span first, Span second, double scale);

// Called after `window` was moved: makes it meet the windows without a frame that stand beside it.
void standFlush(FormWidget& window);

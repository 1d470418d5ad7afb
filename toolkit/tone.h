// SPDX-License-Identifier: GPL-3.0-or-later
// The two tones of the face: the usual one, and one of high contrast for desktops that ask for it. One for
// the whole process; the windows' thread alone.
#pragma once

class QImage;

enum class DesktopTone { usual, highContrast };

DesktopTone tone();
void setTone(DesktopTone tone);

// How much of white the lines have that frame things, of 255.
int lineStrength();

// A picture of the artwork in the present tone.
void bringIntoTone(QImage& picture);

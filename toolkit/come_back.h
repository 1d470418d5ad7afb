// SPDX-License-Identifier: GPL-3.0-or-later
// How a minimised window comes back. For the toolkit's own sources alone.
#pragma once

class QWidget;

// The window that the user is in stays the active one. A window manager that keeps a minimised window mapped,
// to have a picture of it, hears nothing when the window library maps it: it is asked for the window as a
// taskbar would ask for it.
void comeBack(QWidget& window);

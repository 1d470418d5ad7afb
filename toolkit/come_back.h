// SPDX-License-Identifier: GPL-3.0-or-later
// How a minimised window comes back. For the toolkit's own sources alone.
#pragma once

class QWidget;

// As far as the window library can: by mapping the window. A window manager that keeps it mapped while it is
// minimised, to have a picture of it, hears nothing of that; it is asked for the window as a taskbar would
// ask for it, and the window that the user is in stays the active one.
void comeBack(QWidget& window);

// SPDX-License-Identifier: GPL-3.0-or-later
// Windows that no pointer can reach. For the toolkit's own sources alone.
#pragma once

#include <QList>
#include <QRect>

// Where the window must stand to be on the nearest of the screens; where it stands already, if any part of it
// is on one.
QPoint withinReach(const QRect& window, const QList<QRect>& screens);

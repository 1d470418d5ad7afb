// SPDX-License-Identifier: GPL-3.0-or-later
// Tips that show a text which has no room elsewhere. For the toolkit's own sources alone.
#pragma once

#include <QString>

// As a tip shows it whole: no markup in it counts, and it is broken at blanks and behind separators where the
// tip would become wider than the screen.
QString wholeTip(const QString& text);

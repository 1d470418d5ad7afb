// SPDX-License-Identifier: GPL-3.0-or-later
// The tabs of a tab control, for assistive technology. For the toolkit's own sources alone.
#pragma once

class QAccessibleInterface;
class QTabBar;

// Called by the name that it was given; the window library would call it by the tab in front.
QAccessibleInterface* accessibleTabs(QTabBar& bar);

// SPDX-License-Identifier: GPL-3.0-or-later
// Where one window docks to another: plain comparisons of two rectangles, in twips, equality included.
#pragma once

#include "platform/twips.h"

#include <optional>

// In the order in which they are tried.
enum class DockSide { bottom, top, right, left };

inline constexpr DockSide dockSides[] = {DockSide::bottom, DockSide::top, DockSide::right, DockSide::left};

inline constexpr Twips snapDistance = 200;

const char* nameOf(DockSide side);

// `list` lies near that side of `main` and overlaps it along the side.
bool isNear(DockSide side, const Place& main, const Place& list);

// Their edges touch on that side, wherever along it.
bool isFlush(DockSide side, const Place& main, const Place& list);

// The first side that `list` lies near.
std::optional<DockSide> nearSide(const Place& main, const Place& list);

// The first side that `list` lies near without touching it.
std::optional<DockSide> snapSide(const Place& main, const Place& list);

// `list` flush on that side, one corner aligned.
Place docked(DockSide side, const Place& main, const Place& list);

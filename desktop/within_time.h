// SPDX-License-Identifier: GPL-3.0-or-later
// A question that may hang, asked on a thread of its own.
#pragma once

#include <chrono>
#include <functional>

// What `question` answers; false at the end of the time, when it is left to itself. It keeps what it needs.
bool withinTime(std::chrono::milliseconds limit, std::function<bool()> question);

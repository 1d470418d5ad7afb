// SPDX-License-Identifier: GPL-3.0-or-later
// What the program asks of the desktop around it.
#pragma once

#include "platform/text.h"

class Shell
{
public:
    virtual ~Shell() = default;

    // Starts a program in a normal window and does not wait. Fails with 53 when there is none at `path`.
    virtual void startProgram(const Text& path) = 0;

    // Tells the user something that no window of the program has a place for. From any thread; never waits.
    virtual void notify(const Text& title, const Text& message) = 0;
};

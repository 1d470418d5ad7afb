// SPDX-License-Identifier: GPL-3.0-or-later
// The run-time failure, and the ways in which a caller can meet one.
#pragma once

#include "platform/text.h"

#include <functional>
#include <utility>

// The troubles that the program can meet, by the numbers that its users and its handlers know them by.
enum class Trouble : int {
    invalidCall = 5,
    overflow = 6,
    outOfMemory = 7,
    subscriptOutOfRange = 9,
    typeMismatch = 13,
    fileNotFound = 53,
    fileAlreadyOpen = 55,
    deviceInputOutput = 57,
    diskFull = 61,
    endOfFile = 62,
    deviceUnavailable = 68,
    permissionDenied = 70,
    pathOrFileAccess = 75,
    pathNotFound = 76,
    invalidPropertyValue = 380,
    invalidPropertyArrayIndex = 381,
    cancelled = 32755,
};

struct Failure {
    Failure() = default;               // none yet
    explicit Failure(Trouble trouble); // with its usual description
    Failure(Trouble trouble, Text words) : number(static_cast<int>(trouble)), description(std::move(words)) {}

    bool is(Trouble trouble) const { return number == static_cast<int>(trouble); }
    Trouble trouble() const { return static_cast<Trouble>(number); }

    int number = 0;
    Text description;
};

// The failure that an error number of the system's file operations stands for: 53, 57, 61, 70, 75 or 76.
Failure fileFailure(int systemError);

// The first failure abandons the rest of `steps` and is handed to `report`. True when there was none.
template <typename Report, typename Steps>
bool guarded(Report&& report, Steps&& steps)
{
    try {
        steps();
        return true;
    } catch (const Failure& failure) {
        report(failure);
        return false;
    }
}

// True when the step ran to its end; a failure is dropped.
template <typename Step>
bool succeeds(Step&& step)
{
    return guarded([](const Failure&) {}, step);
}

// Each step runs; one that fails is left out.
template <typename... Steps>
void skipping(Steps&&... steps)
{
    (succeeds(steps), ...);
}

// In a skipped stretch a condition that fails does not skip what it guards: the guarded statement runs.
template <typename Condition>
bool holdsOrFails(Condition&& condition)
{
    bool holds = true;
    succeeds([&] { holds = condition(); });
    return holds;
}

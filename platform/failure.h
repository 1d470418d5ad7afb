// The run-time failure, and the ways in which a caller can meet one.
#pragma once

#include "platform/text.h"

#include <functional>

struct Failure {
    int number = 0;
    Text description;
};

// The failure of that number with its usual description.
Failure failure(int number);

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

// SPDX-License-Identifier: GPL-3.0-or-later
// What the program could not keep for itself, said on standard error: it goes on without, and no window has a
// place for it.
#pragma once

#include "platform/failure.h"

#include <atomic>

class Complaint
{
public:
    // `matter` begins the line: "The settings cannot be kept".
    explicit Complaint(const char* matter) : matter_(matter) {}

    // One line, however often it is tried, until it succeeds again. From any thread.
    void failed(const Text& reason);
    void succeeded() { isSaid_ = false; }

    // Whether `work` did; a failure is said.
    template <typename Work>
    bool unless(Work&& work)
    {
        const bool isDone = guarded([this](const Failure& failure) { failed(failure.description); }, work);
        if (isDone)
            succeeded();
        return isDone;
    }

private:
    const char* matter_;
    std::atomic<bool> isSaid_{false};
};

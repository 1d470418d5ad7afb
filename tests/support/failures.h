// SPDX-License-Identifier: GPL-3.0-or-later
// The number of the failure that a step ends in; 0 for none.
#pragma once

#include "platform/failure.h"

template <typename Step>
int failureOf(Step&& step)
{
    int number = 0;
    guarded([&](const Failure& failure) { number = failure.number; }, step);
    return number;
}

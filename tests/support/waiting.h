// SPDX-License-Identifier: GPL-3.0-or-later
// Waiting for what comes by itself, for as long as a slow machine may need.
#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>

// True when `condition` holds within the time; window events run meanwhile.
template <typename Condition>
bool waitFor(Condition&& condition, int seconds = 120)
{
    const QDeadlineTimer deadline(seconds * 1000);
    while (!condition()) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    }
    return true;
}

// SPDX-License-Identifier: GPL-3.0-or-later
// The window library of a fuzzer, off screen. It is there until the process ends.
#pragma once

#include "tests/fuzz/input.h"

#include <QApplication>

inline QApplication& offScreen()
{
    static int count = 1;
    static char name[] = "fuzzer";
    static char* arguments[] = {name, nullptr};
    static auto* application = [] {
        setenv("QT_QPA_PLATFORM", "offscreen", 1);
        setenv("XDG_CONFIG_HOME", memory().path().c_str(), 1);
        return new QApplication(count, arguments);
    }();
    return *application;
}

// SPDX-License-Identifier: GPL-3.0-or-later
// For what the window library has no word for. For the toolkit's own sources alone.
#pragma once

#include <QGuiApplication>

// Null where the windows are on another system: one without a screen says that it is X11, too, and has none.
inline xcb_connection_t* x11Connection()
{
    auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 && QGuiApplication::platformName() == "xcb" ? x11->connection() : nullptr;
}

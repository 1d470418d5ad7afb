// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolkit/come_back.h"

#include "toolkit/x11_connection.h"

#include <QApplication>
#include <QWidget>
#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>

namespace
{

struct Freed {
    void operator()(void* answer) const { std::free(answer); }
};

bool isMapped(const QWidget& window)
{
    auto* connection = x11Connection();
    if (!connection)
        return false;
    const auto asked = xcb_get_window_attributes(connection, static_cast<xcb_window_t>(window.winId()));
    const std::unique_ptr<xcb_get_window_attributes_reply_t, Freed> answer(
        xcb_get_window_attributes_reply(connection, asked, nullptr));
    return answer && answer->map_state != XCB_MAP_STATE_UNMAPPED;
}

}

void comeBack(QWidget& window)
{
    if (!window.isMinimized())
        return;
    QWidget* active = QApplication::activeWindow();
    const bool hearsNothing = isMapped(window);
    window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
    if (hearsNothing)
        window.activateWindow();
    if (active && active != &window)
        active->activateWindow();
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolkit/flush_windows.h"

#include "toolkit/form_widget.h"
#include "toolkit/x11_connection.h"

#include <QApplication>
#include <QScreen>
#include <QWindow>
#include <xcb/xcb.h>

#include <cmath>
#include <cstdlib>

namespace
{

// As the window library counts.
int onScreen(int own, double scale) { return qRound(own * scale); }

bool isStill(int place, int own, double scale) { return qRound(place / scale) == own; }

enum class Direction { across, down };

Span spanOf(const FormWidget& window, Direction direction)
{
    const bool across = direction == Direction::across;
    return {across ? window.place().x() : window.place().y(), across ? window.width() : window.height()};
}

bool touch(Span one, Span other)
{
    return one.from < other.from + other.length && other.from < one.from + one.length;
}

void putOnScreen(const FormWidget& window, Direction direction, int place)
{
    auto* connection = x11Connection();
    if (!connection)
        return;
    const auto value = static_cast<std::uint32_t>(place);
    xcb_configure_window(connection, static_cast<xcb_window_t>(window.winId()),
                         direction == Direction::across ? XCB_CONFIG_WINDOW_X : XCB_CONFIG_WINDOW_Y, &value);
    xcb_flush(connection);
}

void meet(const FormWidget& one, const FormWidget& other, Direction direction, double scale)
{
    const Span a = spanOf(one, direction);
    const Span b = spanOf(other, direction);
    const bool oneIsFirst = a.from + a.length == b.from;
    if (!oneIsFirst && b.from + b.length != a.from)
        return;
    const auto meeting = oneIsFirst ? meetingOf(a, b, scale) : meetingOf(b, a, scale);
    if (!meeting)
        return;
    putOnScreen(oneIsFirst ? one : other, direction, meeting->first);
    putOnScreen(oneIsFirst ? other : one, direction, meeting->second);
}

}

std::optional<Meeting> meetingOf(Span first, Span second, double scale)
{
    const int length = onScreen(first.length, scale);
    const int usual = onScreen(first.from, scale);
    if (first.from + first.length != second.from || usual + length == onScreen(second.from, scale))
        return std::nullopt;
    for (const int place : {usual, usual - 1, usual + 1})
        if (isStill(place, first.from, scale) && isStill(place + length, second.from, scale))
            return Meeting{place, place + length};
    return std::nullopt;
}

void standFlush(FormWidget& window)
{
    const double scale = window.devicePixelRatioF();
    if (scale == std::floor(scale) || !x11Connection() || window.screen()->geometry().topLeft() != QPoint())
        return;
    for (auto* each : QApplication::topLevelWidgets()) {
        auto* other = dynamic_cast<FormWidget*>(each);
        if (!other || other == &window || !other->isVisible() ||
            !other->windowFlags().testFlag(Qt::FramelessWindowHint))
            continue;
        if (touch(spanOf(window, Direction::across), spanOf(*other, Direction::across)))
            meet(window, *other, Direction::down, scale);
        if (touch(spanOf(window, Direction::down), spanOf(*other, Direction::down)))
            meet(window, *other, Direction::across, scale);
    }
}

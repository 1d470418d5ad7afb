// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolkit/flush_windows.h"

#include <QtGlobal>
#include <doctest/doctest.h>

TEST_CASE("Windows that meet already, or do not touch, stay where they are")
{
    for (const double scale : {1.0, 2.0, 3.0})
        for (int place = -500; place < 500; ++place)
            CHECK_FALSE(meetingOf({place, 199}, {place + 199, 199}, scale));
    CHECK_FALSE(meetingOf({10, 199}, {210, 199}, 1.5));
    CHECK_FALSE(meetingOf({10, 199}, {208, 199}, 1.5));
    CHECK_FALSE(meetingOf({10, 199}, {209, 199}, 1.5)); // 15 and 299 make 314
}

TEST_CASE(
    "At every scale and place two windows can meet to the pixel, each within the pixel that it was put on")
{
    for (const double scale : {1.1, 1.25, 4.0 / 3, 1.5, 1.75, 2.25, 2.5})
        for (const int length : {199, 429})
            for (int place = -300; place < 3000; ++place) {
                const int on = qRound(length * scale);
                const bool meets = qRound(place * scale) + on == qRound((place + length) * scale);
                const auto meeting = meetingOf({place, length}, {place + length, 77}, scale);
                if (meeting.has_value() == meets || (meeting && meeting->first + on != meeting->second) ||
                    (meeting && (qRound(meeting->first / scale) != place ||
                                 qRound(meeting->second / scale) != place + length)))
                    FAIL_CHECK(scale, " ", length, " ", place);
            }
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/list_program.h"

#include <QCoreApplication>
#include <algorithm>
#include <ctime>
#include <doctest/doctest.h>
#include <limits>

namespace
{

// Milliseconds of processor time: what else the machine does is none of the list's.
template <typename Work>
double timeOf(Work&& work)
{
    const auto begin = std::clock();
    work();
    return 1000.0 * static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
}

Text listOf(int rows)
{
    Text text;
    for (int row = 0; row < rows; ++row)
        text += "/home/user/Music/Some Artist/Some Album (1999)/" + std::to_string(row) +
                " - A Song With a Name.mp3\r\n";
    return text;
}

double openingTime(int rows, bool shown)
{
    double best = std::numeric_limits<double>::max();
    for (int time = 0; time < 3; ++time) {
        ListProgram start;
        start.file("/list.vlp") = listOf(rows);
        start.willChoose({"/list.vlp"});
        if (shown)
            start.list.Show();
        QCoreApplication::processEvents();
        best = std::min(best, timeOf([&] {
                            start.list.GoDoOpen();
                            QCoreApplication::processEvents(); // the view takes the rows in
                        }));
        CHECK(start.list.PlayListLB.ListCount() == rows);
    }
    return best;
}

}

TEST_CASE("Opening a list takes time in proportion to its rows")
{
    for (const bool shown : {false, true}) {
        CAPTURE(shown);
        const double some = openingTime(10000, shown);
        const double many = openingTime(100000, shown);
        CHECK(many < 40 * some); // a step for each pair of rows would make it a hundred
        MESSAGE("10,000 rows ", some, " ms, 100,000 rows ", many, " ms");
    }
}

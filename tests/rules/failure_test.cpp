// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/failure.h"

#include <cerrno>
#include <doctest/doctest.h>
#include <vector>

namespace
{

void fail(int number) { throw Failure(Trouble(number)); }

}

TEST_CASE("A guarded stretch ends at its first failure and reports it")
{
    std::vector<int> steps;
    Failure reported;
    const bool whole = guarded([&](const Failure& failure) { reported = failure; },
                               [&] {
                                   steps.push_back(1);
                                   fail(13);
                                   steps.push_back(2);
                               });
    CHECK_FALSE(whole);
    CHECK(steps == std::vector{1});
    CHECK(reported.number == 13);
    CHECK(reported.description == "Type mismatch");
}

TEST_CASE("A skipped stretch leaves out the failing step alone")
{
    std::vector<int> steps;
    skipping([&] { steps.push_back(1); }, [&] { fail(6); }, [&] { steps.push_back(3); });
    CHECK(steps == std::vector{1, 3});
}

TEST_CASE("A failing condition in a skipped stretch lets the guarded statement run")
{
    CHECK(holdsOrFails([] { return true; }));
    CHECK_FALSE(holdsOrFails([] { return false; }));
    CHECK(holdsOrFails([]() -> bool { throw Failure(Trouble::typeMismatch); }));
}

TEST_CASE("A system error becomes the failure that a user of plain files expects")
{
    CHECK(fileFailure(ENOENT).number == 53);
    CHECK(fileFailure(EACCES).description == "Permission denied");
    CHECK(fileFailure(ENOSPC).description == "Disk full");
    CHECK(fileFailure(ENOTDIR).number == 76);
    CHECK(fileFailure(ELOOP).number == 75);
    CHECK(Failure(Trouble::cancelled).description == "Cancel was selected.");
}

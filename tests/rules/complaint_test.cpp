// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/complaint.h"

#include <doctest/doctest.h>

#include <cstdio>
#include <unistd.h>

namespace
{

// What standard error gets meanwhile.
template <typename Work>
Text saidDuring(Work&& work)
{
    std::FILE* const caught = std::tmpfile();
    const int before = dup(STDERR_FILENO);
    dup2(fileno(caught), STDERR_FILENO);
    work();
    std::fflush(stderr);
    dup2(before, STDERR_FILENO);
    close(before);
    std::rewind(caught);
    char bytes[1000];
    const Text said(bytes, std::fread(bytes, 1, sizeof bytes, caught));
    std::fclose(caught);
    return said;
}

void refuse() { throw Failure(Trouble::diskFull); }

}

TEST_CASE("A complaint is one line, however often it is tried, and another once it had succeeded")
{
    const Text line = "Velmora: The volume cannot be kept: Disk full.\n";
    CHECK(saidDuring([] {
              Complaint complaint("The volume cannot be kept");
              CHECK_FALSE(complaint.unless(refuse));
              CHECK_FALSE(complaint.unless(refuse));
          }) == line);
    CHECK(saidDuring([] {
              Complaint complaint("The volume cannot be kept");
              CHECK_FALSE(complaint.unless(refuse));
              CHECK(complaint.unless([] {}));
              CHECK_FALSE(complaint.unless(refuse));
          }) == line + line);
}

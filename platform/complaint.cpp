// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/complaint.h"

#include <cstdio>

void Complaint::failed(const Text& reason)
{
    if (!isSaid_.exchange(true))
        std::fprintf(stderr, "Velmora: %s: %s.\n", matter_, reason.c_str());
}

// SPDX-License-Identifier: GPL-3.0-or-later
// The places that a drive list offers.
#pragma once

#include "platform/text.h"

#include <vector>

struct Drive {
    Text path;  // what the list gives to the program
    Text label; // what the user sees beside it; may be empty

    bool operator==(const Drive&) const = default;
};

class Drives
{
public:
    virtual ~Drives() = default;

    virtual std::vector<Drive> all() = 0; // looked for anew at each call
};

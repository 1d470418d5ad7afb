// SPDX-License-Identifier: GPL-3.0-or-later
// Who runs the program, as the user database says.
#pragma once

#include "platform/text.h"

namespace files
{

struct Account {
    Text name;
    Text home;
};

// Empty where the database, which may be far away, does not answer within 200 ms.
Account accountOfUser();

}

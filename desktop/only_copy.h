// SPDX-License-Identifier: GPL-3.0-or-later
// The place of the only copy of the program.
#pragma once

#include "desktop/copy_lock.h"

#include <optional>

namespace desktop
{

// Takes the place, and keeps it for as long as this lives; or ends the process. With 0, when the copy that
// runs already has answered: it brings its window up. With 1, and a word on standard error and to the
// desktop, when it does not answer.
class OnlyCopy
{
public:
    explicit OnlyCopy(const Environment& environment);

private:
    std::optional<CopyLock> lock_;
};

}

// SPDX-License-Identifier: GPL-3.0-or-later
// What is said of a file that stands as it was written, and that the disk did not take for good.
#pragma once

#include "platform/text.h"

class Shell;

namespace desktop
{

// The user hears of a list that was saved. Of the program's own files, which are written again soon, standard
// error does.
void tellUnforced(const Text& path, const Text& applicationFolder, Shell& shell);

}

// SPDX-License-Identifier: GPL-3.0-or-later
// What the program stands on before anything else of it does.
#pragma once

namespace desktop
{

// /dev/null takes the place of a standard stream that is closed: the next file to be opened would get its
// number, and whatever a library says would be written into it.
void openStandardStreams();

// Ends the process with 1 and a word on standard error where the system makes no threads: the window system's
// would be missing without a sign, and no window would ever answer.
void requireThreads();

}

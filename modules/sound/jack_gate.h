// SPDX-License-Identifier: GPL-3.0-or-later
// Keeps clients of JACK from beginning where no server of it stands. The sound library asks each kind of
// server in turn, JACK's before ALSA, and JACK's client does harm there: on a busy machine its message thread
// comes after its end and takes the program with it, and a program that is killed meanwhile leaves a lock
// below /dev/shm at which every later one of that user stands still.
#pragma once

namespace audio
{

bool jackStands();

}

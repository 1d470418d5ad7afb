// SPDX-License-Identifier: GPL-3.0-or-later
// Which sound server there is to talk to.
#pragma once

namespace audio
{

// The name that the sound library has for it; "alsa" where there is none. The library finds out by itself,
// but only by beginning a talk with each kind, and JACK's client does harm where no server stands: on a busy
// machine its message thread comes after its end and takes the program with it, and a program that is killed
// meanwhile leaves a lock below /dev/shm at which every later one of that user stands still.
const char* standingServer();

bool jackStands();

}

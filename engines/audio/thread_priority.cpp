// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/audio/thread_priority.h"

#include <pthread.h>
#include <sched.h>
#include <sys/resource.h>

namespace audio
{

void putBeforeOtherWork()
{
    const sched_param lowestOfRealTime{1};
    constexpr int asSoundServersDo = -11;
    if (pthread_setschedparam(pthread_self(), SCHED_RR, &lowestOfRealTime) != 0)
        setpriority(PRIO_PROCESS, 0, asSoundServersDo); // of this thread alone
}

}

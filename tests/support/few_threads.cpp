// SPDX-License-Identifier: GPL-3.0-or-later
// Preloaded into a program: a system that makes VELMORA_THREADS threads for it at one time, and no more.
#include "tests/support/system_calls.h"

#include <pthread.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>

namespace
{

using Work = void* (*)(void*);

struct Start {
    Work work;
    void* argument;
};

std::atomic<int> living = 0;

int allowed()
{
    static const char* const number = std::getenv("VELMORA_THREADS");
    return number ? std::atoi(number) : 0;
}

// A thread that is cancelled or ends itself goes this way, too.
struct Counted {
    ~Counted() { --living; }
};

void* run(void* given)
{
    const Counted counted;
    const Start start = *static_cast<Start*>(given);
    delete static_cast<Start*>(given);
    return start.work(start.argument);
}

}

extern "C" int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, Work work, void* argument)
{
    using Create = int(pthread_t*, const pthread_attr_t*, Work, void*);
    static auto* const create = systemCalls::next<Create>("pthread_create");
    if (++living > allowed()) {
        --living;
        return EAGAIN;
    }
    return create(thread, attributes, run, new Start{work, argument});
}

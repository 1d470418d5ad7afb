// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/counted_calls.h"

#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/ucontext.h>

#include <csignal>

// The thread sanitizer asks the system for something itself before it hands a signal on.
#if defined(__x86_64__) && defined(PR_SET_SYSCALL_USER_DISPATCH) && !defined(__SANITIZE_THREAD__)

namespace
{

volatile char selector = SYSCALL_DISPATCH_FILTER_ALLOW;
volatile long first = systemCalls::none;

long carriedOut(const greg_t* registers)
{
    long result = registers[REG_RAX];
    register long fourth asm("r10") = registers[REG_R10];
    register long fifth asm("r8") = registers[REG_R8];
    register long sixth asm("r9") = registers[REG_R9];
    asm volatile("syscall"
                 : "+a"(result)
                 : "D"(registers[REG_RDI]), "S"(registers[REG_RSI]), "d"(registers[REG_RDX]), "r"(fourth),
                   "r"(fifth), "r"(sixth)
                 : "rcx", "r11", "memory");
    return result;
}

// A lock's; the address sanitizer keeps freed memory back, and asks the system for more.
bool isOfTheGround(long call)
{
#ifdef __SANITIZE_ADDRESS__
    if (call == SYS_mmap)
        return true;
#endif
    return call == SYS_futex;
}

// From the first call on all pass: the return from here is one itself.
void meet(int, siginfo_t*, void* context)
{
    selector = SYSCALL_DISPATCH_FILTER_ALLOW;
    greg_t* registers = static_cast<ucontext_t*>(context)->uc_mcontext.gregs;
    first = registers[REG_RAX];
    registers[REG_RAX] = carriedOut(registers);
}

bool watches(unsigned long mode)
{
    return prctl(PR_SET_SYSCALL_USER_DISPATCH, mode, 0, 0,
                 mode == PR_SYS_DISPATCH_ON ? &selector : nullptr) == 0;
}

}

long systemCalls::firstOf(const std::function<void()>& work)
{
    struct sigaction action = {};
    action.sa_sigaction = meet;
    action.sa_flags = SA_SIGINFO;
    sigaction(SIGSYS, &action, nullptr);
    if (!watches(PR_SYS_DISPATCH_ON))
        return unknown;
    first = none;
    selector = SYSCALL_DISPATCH_FILTER_BLOCK;
    work();
    selector = SYSCALL_DISPATCH_FILTER_ALLOW;
    watches(PR_SYS_DISPATCH_OFF);
    return isOfTheGround(first) ? none : first;
}

#else

long systemCalls::firstOf(const std::function<void()>& work)
{
    work();
    return unknown;
}

#endif

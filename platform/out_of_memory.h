// SPDX-License-Identifier: GPL-3.0-or-later
// Work on threads of our own while memory runs out: no thread may end by that, its failure is told as any
// other is, and what others wait for comes.
#pragma once

#include "platform/failure.h"

#include <chrono>
#include <exception>
#include <functional>
#include <new>
#include <string_view>
#include <thread>

// Tries until there is memory for it: what others wait for may come late, but must come. A try that found
// none has changed nothing.
template <typename Step>
void persisting(Step&& step)
{
    for (;;) {
        try {
            step();
            return;
        } catch (const std::bad_alloc&) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
    }
}

// Whatever ends the steps is handed to `tell` in words. True when nothing did.
template <typename Tell, typename Steps>
bool toldInWords(Tell&& tell, Steps&& steps)
{
    try {
        steps();
        return true;
    } catch (const Failure& failure) {
        persisting([&] { tell(std::string_view(failure.description)); });
    } catch (const std::bad_alloc&) {
        persisting([&] { tell(std::string_view(Failure(Trouble::outOfMemory).description)); });
    } catch (const std::exception& error) {
        persisting([&] { tell(std::string_view(error.what())); });
    }
    return false;
}

// For what nobody waits for: it is left out where there is no memory for it, and one line on standard error
// says so.
void leavingOut(const std::function<void()>& work);

// SPDX-License-Identifier: GPL-3.0-or-later
// A second start of the program, which finds the first one running: it asks that one, over the session bus,
// to bring its window up, and ends.
#pragma once

#include "platform/event.h"
#include "platform/text.h"

#include <sys/types.h>

#include <memory>

class Post;

namespace desktop
{

// The first one's side.
class SecondStarts
{
public:
    // `busAddress` is that of a running session bus, "" for none: then nobody can ask. The bus is met on a
    // thread of its own.
    SecondStarts(const Text& busAddress, Post& post);
    ~SecondStarts();

    Event<> Asked; // the one who asked has been answered

private:
    class Answerer;
    std::unique_ptr<Answerer> answerer_;
};

// The second one's side. True when the process `first` has answered within the time that a person waits.
bool isAnsweredBy(pid_t first, const Text& busAddress);

}

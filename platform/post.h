// SPDX-License-Identifier: GPL-3.0-or-later
// The way from a worker thread to the window thread.
#pragma once

#include <functional>

class Post
{
public:
    virtual ~Post() = default;

    // Runs `call` on the window thread, in the order of posting, and wakes a waiting pump. From any thread.
    virtual void post(std::function<void()> call) = 0;
};

// SPDX-License-Identifier: GPL-3.0-or-later
// The way of a control's events from its threads to the window thread. Calls that are under way when the
// control goes are dropped.
#pragma once

#include "platform/post.h"

#include <memory>
#include <utility>

namespace disc
{

template <typename Control>
class WindowCalls
{
public:
    WindowCalls(Post& post, Control& control) : post_(post), control_(std::make_shared<Control*>(&control)) {}

    // Runs `call` with the control on the window thread. From any thread, for as long as this object lives.
    template <typename Call>
    void post(Call call) const
    {
        post_.post([weak = std::weak_ptr(control_), call = std::move(call)] {
            if (const auto control = weak.lock())
                call(**control);
        });
    }

private:
    Post& post_;
    std::shared_ptr<Control*> control_;
};

}

// SPDX-License-Identifier: GPL-3.0-or-later
// What a control tells its window: one event, one handler.
#pragma once

#include <functional>
#include <utility>

template <typename... Args>
class Event
{
public:
    template <typename Object>
    void calls(Object& object, void (Object::*handler)(Args...))
    {
        handler_ = [&object, handler](Args... args) { (object.*handler)(args...); };
    }

    void calls(std::function<void(Args...)> handler) { handler_ = std::move(handler); }

    bool isWired() const { return static_cast<bool>(handler_); }

    // Runs the handler, if there is one. Its failure is the raiser's.
    void raise(Args... args) const
    {
        if (handler_)
            handler_(args...);
    }

private:
    std::function<void(Args...)> handler_;
};

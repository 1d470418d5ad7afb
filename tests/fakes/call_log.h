// SPDX-License-Identifier: GPL-3.0-or-later
// What the fakes were asked for, in order, over all of them.
#pragma once

#include "platform/text.h"

#include <algorithm>
#include <functional>
#include <vector>

class CallLog
{
public:
    // Sees each call as it is made; what it throws is the call's own failure.
    std::function<void(const Text&)> onCall;

    void add(const Text& call)
    {
        calls_.push_back(call);
        if (onCall)
            onCall(call);
    }
    void clear() { calls_.clear(); }

    const std::vector<Text>& all() const { return calls_; }

    // The calls of one fake: "Mp3Player" gives "Mp3Player.Stop" and the like.
    std::vector<Text> of(const Text& name) const
    {
        std::vector<Text> own;
        std::copy_if(calls_.begin(), calls_.end(), std::back_inserter(own),
                     [&](const Text& call) { return call.starts_with(name + "."); });
        return own;
    }

    std::ptrdiff_t count(const Text& call) const { return std::count(calls_.begin(), calls_.end(), call); }

private:
    std::vector<Text> calls_;
};

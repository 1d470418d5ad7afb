// SPDX-License-Identifier: GPL-3.0-or-later
// Work that a drive may hold up, on a thread of its own. Who has waited long enough leaves it behind: it ends
// when the drive lets it, and nobody hears of it.
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>

template <typename Result>
class Errand
{
public:
    // `work` holds what it needs, and throws nothing.
    explicit Errand(std::function<Result()> work)
    {
        try {
            std::thread([work = std::move(work), state = state_] { state->end(work()); }).detach();
        } catch (const std::system_error&) { // no thread to be had
            state_->end(std::nullopt);
        }
    }

    // The result, once; nothing when it takes longer than `limit`.
    std::optional<Result> result(std::chrono::milliseconds limit)
    {
        std::unique_lock lock(state_->mutex);
        state_->ended.wait_for(lock, limit, [this] { return state_->hasEnded; });
        return std::exchange(state_->result, std::nullopt);
    }

    bool hasEnded() const
    {
        const std::lock_guard lock(state_->mutex);
        return state_->hasEnded;
    }

private:
    struct State {
        void end(std::optional<Result> what)
        {
            const std::lock_guard lock(mutex);
            result = std::move(what);
            hasEnded = true;
            ended.notify_all();
        }

        std::mutex mutex;
        std::condition_variable ended;
        std::optional<Result> result;
        bool hasEnded = false;
    };

    std::shared_ptr<State> state_ = std::make_shared<State>();
};

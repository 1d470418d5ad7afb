// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/codec/tasks.h"

#include "platform/mutex.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <thread>
#include <vector>

namespace codec
{

namespace
{

class TaskRun
{
public:
    TaskRun(std::size_t count, const std::stop_token& stop,
            const std::function<void(std::size_t, const std::stop_token&)>& task) :
        count_(count),
        task_(task), stopWithCaller_(stop, [this] { stop_.request_stop(); })
    {
    }

    void work()
    {
        try {
            while (!stop_.stop_requested()) {
                const std::size_t index = next_++;
                if (index >= count_)
                    return;
                task_(index, stop_.get_token());
            }
        } catch (...) {
            fail(std::current_exception());
        }
    }

    void throwFailure()
    {
        const Lock lock(mutex_);
        if (failure_)
            std::rethrow_exception(failure_);
    }

private:
    // What stopped tasks throw afterwards comes second and is dropped.
    void fail(std::exception_ptr failure)
    {
        const Lock lock(mutex_);
        if (!failure_)
            failure_ = std::move(failure);
        stop_.request_stop();
    }

    std::size_t count_;
    const std::function<void(std::size_t, const std::stop_token&)>& task_;
    std::stop_source stop_;
    std::stop_callback<std::function<void()>> stopWithCaller_;
    std::atomic<std::size_t> next_ = 0;
    Mutex mutex_;
    std::exception_ptr failure_ GUARDED_BY(mutex_);
};

}

unsigned coreCount() { return std::max(1u, std::thread::hardware_concurrency()); }

void runTasks(unsigned workers, std::size_t count, const std::stop_token& stop,
              const std::function<void(std::size_t, const std::stop_token&)>& task)
{
    TaskRun run(count, stop, task);
    {
        std::vector<std::jthread> others;
        try {
            for (std::size_t i = 1; i < std::min<std::size_t>(workers, count); ++i)
                others.emplace_back([&run] { run.work(); });
        } catch (const std::exception&) { // fewer do it, too, where there is no thread or no memory for one
        }
        run.work();
    }
    run.throwFailure();
    throwIfStopped(stop);
}

void Progress::add(std::int64_t done)
{
    const Lock lock(mutex_);
    done_ = std::min(done_ + done, total_);
    const auto thousandths = static_cast<std::int32_t>(done_ * 1000 / total_);
    if (thousandths <= reported_)
        return;
    reported_ = thousandths;
    report_(thousandths);
}

}

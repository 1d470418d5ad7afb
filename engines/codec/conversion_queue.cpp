// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/codec/conversion_queue.h"

#include "platform/failure.h"

#include <exception>

namespace codec
{

ConversionQueue::ConversionQueue(Post& post, Shell& shell, Text failed, Events events) :
    post_(post), shell_(shell), failed_(std::move(failed)),
    events_(std::make_shared<Events>(std::move(events)))
{
}

ConversionQueue::~ConversionQueue() = default;

// The thread is made by the first conversion: most runs of the program convert nothing.
void ConversionQueue::add(Conversion conversion)
{
    {
        const std::lock_guard lock(mutex_);
        waiting_.push_back(std::move(conversion));
    }
    if (!worker_.joinable())
        worker_ = std::jthread([this](const std::stop_token& stop) { run(stop); });
    changed_.notify_one();
}

void ConversionQueue::run(const std::stop_token& stop)
{
    std::unique_lock lock(mutex_);
    while (changed_.wait(lock, stop, [this] { return !waiting_.empty(); })) {
        if (stop.stop_requested())
            return;
        const Conversion next = std::move(waiting_.front());
        waiting_.pop_front();
        lock.unlock();
        convert(next, stop);
        lock.lock();
    }
}

void ConversionQueue::convert(const Conversion& conversion, const std::stop_token& stop)
{
    const Report report = [this](std::int32_t thousandths) {
        deliver([thousandths](const Events& events) { events.progress(thousandths); });
    };
    try {
        conversion.work(report, stop);
    } catch (const Stopped&) {
        return;
    } catch (const Failure& failure) {
        tell(conversion.input, failure.description);
    } catch (const std::exception& error) {
        tell(conversion.input, error.what());
    }
    deliver([number = conversion.number](const Events& events) { events.done(number); });
}

void ConversionQueue::tell(const Text& input, const Text& reason)
{
    shell_.notify(failed_, input + ": " + reason);
}

template <typename Call>
void ConversionQueue::deliver(Call call)
{
    post_.post([weak = std::weak_ptr(events_), call] {
        if (const auto events = weak.lock())
            call(*events);
    });
}

}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/codec/conversion_queue.h"

#include "platform/out_of_memory.h"

namespace codec
{

ConversionQueue::ConversionQueue(Post& post, Shell& shell, Text failed, ConversionEvents events) :
    post_(post), shell_(shell), failed_(std::move(failed)),
    events_(std::make_shared<ConversionEvents>(std::move(events)))
{
}

void ConversionQueue::add(Conversion conversion)
{
    worker_.add([this, conversion = std::move(conversion)](const std::stop_token& stop) {
        convert(conversion, stop);
    });
}

void ConversionQueue::convert(const Conversion& conversion, const std::stop_token& stop)
{
    const Report report = [this](std::int32_t thousandths) {
        deliver([thousandths](const ConversionEvents& events) { events.progress(thousandths); });
    };
    try {
        toldInWords([&](std::string_view reason) { tell(conversion.input, Text(reason)); },
                    [&] { conversion.work(report, stop); });
    } catch (const Stopped&) {
        return;
    }
    persisting([&] {
        deliver([number = conversion.number](const ConversionEvents& events) { events.done(number); });
    });
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

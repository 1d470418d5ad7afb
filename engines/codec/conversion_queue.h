// SPDX-License-Identifier: GPL-3.0-or-later
// Runs conversions of files one after the other on a thread of its own.
#pragma once

#include "engines/codec/tasks.h"
#include "platform/post.h"
#include "platform/shell.h"
#include "platform/text.h"
#include "platform/worker.h"

#include <cstdint>
#include <functional>
#include <memory>

namespace codec
{

class ConversionQueue
{
public:
    // Both calls run on the window thread; no progress comes after its `done`. The number names the
    // conversion.
    struct ConversionEvents {
        std::function<void(std::int32_t)> progress;
        std::function<void(std::uint64_t)> done;
    };

    struct Conversion {
        std::uint64_t number = 0;
        Text input; // what the desktop is told about when it fails
        std::function<void(const Report&, const std::stop_token&)> work; // fails with the reason
    };

    // `failed` heads what the desktop is told: "Encoding failed".
    // It ends on the window thread: the running conversion is broken off, and nothing is delivered
    // afterwards.
    ConversionQueue(Post& post, Shell& shell, Text failed, ConversionEvents events);

    void add(Conversion conversion);

private:
    void convert(const Conversion& conversion, const std::stop_token& stop);
    void tell(const Text& input, const Text& reason);
    template <typename Call>
    void deliver(Call call);

    Post& post_;
    Shell& shell_;
    Text failed_;
    std::shared_ptr<ConversionEvents> events_; // calls under way hold it weakly: they end with this object
    Worker worker_{Worker::AtEnd::joins};      // the last member: it ends first
};

}

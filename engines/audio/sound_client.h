// SPDX-License-Identifier: GPL-3.0-or-later
// The sound server's client, for one thread. Any call may block.
#pragma once

#include "engines/audio/stream.h"

#include <memory>

namespace audio
{

class SoundClient
{
public:
    virtual ~SoundClient() = default;

    virtual void open(std::shared_ptr<Stream> stream) = 0; // starts it, or lets it fail
    virtual void close(const std::shared_ptr<Stream>& stream) = 0;
    virtual void look() = 0; // tells the streams how much of them was heard

    virtual Stream::Clock::time_point nextLook() const = 0;
};

// A module that is bound when something sounds for the first time.
struct SoundParts {
    static constexpr const char* module = "sound";

    std::unique_ptr<SoundClient> (*makeClient)();
};

}

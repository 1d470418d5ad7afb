// SPDX-License-Identifier: GPL-3.0-or-later
// The sound server. Everything that may wait for it happens on a thread of its own, which begins with the
// first stream; the calls here return at once, also while the server hangs.
#pragma once

#include "engines/audio/stream.h"
#include "platform/worker.h"

#include <memory>

namespace audio
{

class SoundClient;

class SoundDevice
{
public:
    SoundDevice(); // its end does not wait for a server that hangs

    // Opens a way to the listener: sound is asked of `stream` from then on, or it fails.
    void open(std::shared_ptr<Stream> stream);

    // What is left unheard is dropped with it.
    void close(std::shared_ptr<Stream> stream);

private:
    explicit SoundDevice(std::shared_ptr<SoundClient> client);

    void ask(std::function<void(SoundClient&)> question);

    std::weak_ptr<SoundClient>
        client_; // the worker's own: it ends on that thread, also while the server hangs
    Worker worker_;
};

}

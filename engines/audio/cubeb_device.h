// SPDX-License-Identifier: GPL-3.0-or-later
// The sound server. Everything that may wait for it happens on a thread of its own, which begins with the
// first stream; the calls here return at once, also while the server hangs.
#pragma once

#include "engines/audio/stream.h"

#include <memory>
#include <thread>

namespace audio
{

class CubebDevice
{
public:
    CubebDevice();
    ~CubebDevice(); // does not wait for a server that hangs

    // Opens a way to the listener: sound is asked of `stream` from then on, or it fails.
    void open(std::shared_ptr<Stream> stream);

    // What is left unheard is dropped with it.
    void close(std::shared_ptr<Stream> stream);

private:
    struct Control;

    void ask(std::shared_ptr<Stream> stream, bool open);

    std::shared_ptr<Control> control_; // outlives this object while the server hangs
    std::thread thread_;
};

}

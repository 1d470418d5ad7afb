// SPDX-License-Identifier: GPL-3.0-or-later
// The sound server's client, for one thread. Any call may block.
#pragma once

#include "engines/audio/stream.h"

#include <memory>
#include <vector>

struct cubeb;
struct cubeb_stream;

namespace audio
{

class CubebClient
{
public:
    CubebClient() = default;
    ~CubebClient();
    CubebClient(const CubebClient&) = delete;
    CubebClient& operator=(const CubebClient&) = delete;

    void open(std::shared_ptr<Stream> stream); // starts it, or lets it fail
    void close(const std::shared_ptr<Stream>& stream);
    void look(); // tells the streams how much of them was heard

    Stream::Clock::time_point nextLook() const;

private:
    struct Playing {
        std::shared_ptr<Stream> stream;
        cubeb_stream* handle = nullptr;
    };

    bool start(Playing& playing);
    void leave();

    cubeb* context_ = nullptr;
    std::vector<Playing> playing_;
};

}

// SPDX-License-Identifier: GPL-3.0-or-later
// The sound server's client over cubeb.
#pragma once

#include "engines/audio/sound_client.h"

#include <memory>
#include <vector>

struct cubeb;
struct cubeb_stream;

namespace audio
{

class CubebClient final : public SoundClient
{
public:
    CubebClient() = default;
    ~CubebClient() override;
    CubebClient(const CubebClient&) = delete;
    CubebClient& operator=(const CubebClient&) = delete;

    void open(std::shared_ptr<Stream> stream) override;
    void close(const std::shared_ptr<Stream>& stream) override;
    void look() override;

    Stream::Clock::time_point nextLook() const override;

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

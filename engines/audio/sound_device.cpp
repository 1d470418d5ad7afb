// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/audio/sound_device.h"

#include "engines/audio/sound_client.h"
#include "files/module.h"

namespace audio
{

namespace
{

// The client from the first stream on. Where its module is not to be had, it is as if no server ever
// answered.
class LateClient final : public SoundClient
{
public:
    void open(std::shared_ptr<Stream> stream) override
    {
        const auto* sound = client_ ? nullptr : files::bound<SoundParts>();
        if (sound != nullptr)
            client_ = sound->makeClient();
        if (client_)
            client_->open(std::move(stream));
        else
            stream->fail();
    }

    void close(const std::shared_ptr<Stream>& stream) override
    {
        if (client_)
            client_->close(stream);
    }

    void look() override
    {
        if (client_)
            client_->look();
    }

    Stream::Clock::time_point nextLook() const override
    {
        return client_ ? client_->nextLook() : Stream::Clock::time_point::max();
    }

private:
    std::unique_ptr<SoundClient> client_;
};

}

SoundDevice::SoundDevice() : SoundDevice(std::make_shared<LateClient>()) {}

SoundDevice::SoundDevice(std::shared_ptr<SoundClient> client) :
    client_(client), worker_(Worker::AtEnd::abandons, [client = std::move(client)] {
        client->look();
        return client->nextLook();
    })
{
}

void SoundDevice::ask(std::function<void(SoundClient&)> question)
{
    worker_.add([weak = client_, question = std::move(question)](const std::stop_token&) {
        if (const auto client = weak.lock())
            question(*client);
    });
}

void SoundDevice::open(std::shared_ptr<Stream> stream)
{
    ask([stream = std::move(stream)](SoundClient& client) { client.open(stream); });
}

void SoundDevice::close(std::shared_ptr<Stream> stream)
{
    ask([stream = std::move(stream)](SoundClient& client) { client.close(stream); });
}

}

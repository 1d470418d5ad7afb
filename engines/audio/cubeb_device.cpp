// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/audio/cubeb_device.h"

#include "engines/audio/cubeb_client.h"

namespace audio
{

CubebDevice::CubebDevice() : CubebDevice(std::make_shared<CubebClient>()) {}

CubebDevice::CubebDevice(std::shared_ptr<CubebClient> client) :
    client_(client), worker_(Worker::AtEnd::abandons, [client = std::move(client)] {
        client->look();
        return client->nextLook();
    })
{
}

void CubebDevice::ask(std::function<void(CubebClient&)> question)
{
    worker_.add([weak = client_, question = std::move(question)](const std::stop_token&) {
        if (const auto client = weak.lock())
            question(*client);
    });
}

void CubebDevice::open(std::shared_ptr<Stream> stream)
{
    ask([stream = std::move(stream)](CubebClient& client) { client.open(stream); });
}

void CubebDevice::close(std::shared_ptr<Stream> stream)
{
    ask([stream = std::move(stream)](CubebClient& client) { client.close(stream); });
}

}

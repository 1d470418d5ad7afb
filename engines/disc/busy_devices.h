// SPDX-License-Identifier: GPL-3.0-or-later
// Which devices are in use, so that no two jobs meet on one. From any thread.
#pragma once

#include "platform/mutex.h"
#include "platform/text.h"

#include <map>
#include <memory>
#include <optional>
#include <stop_token>

namespace disc
{

class BusyDevices : public std::enable_shared_from_this<BusyDevices>
{
public:
    enum class DeviceUse { reading, writing };

    // Holds the device until it goes out of scope.
    class Claim
    {
    public:
        Claim(Claim&&) noexcept = default;
        Claim& operator=(Claim&&) = delete;
        ~Claim();

    private:
        friend BusyDevices;
        Claim(std::shared_ptr<BusyDevices> devices, Text device) :
            devices_(std::move(devices)), device_(std::move(device))
        {
        }

        std::shared_ptr<BusyDevices> devices_;
        Text device_;
    };

    // Nothing when the device is in use.
    std::optional<Claim> claim(const Text& device, DeviceUse use);

    // Waits until it is free; nothing after a stop.
    std::optional<Claim> claimWhenFree(const Text& device, DeviceUse use, const std::stop_token& stop);

    bool isWriting(const Text& device);

private:
    Mutex mutex_;
    Condition freed_;
    std::map<Text, DeviceUse> inUse_ GUARDED_BY(mutex_);
};

}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/disc/busy_devices.h"

namespace disc
{

BusyDevices::Claim::~Claim()
{
    if (!devices_)
        return;
    const Lock guard(devices_->mutex_);
    devices_->inUse_.erase(device_);
    devices_->freed_.notifyAll();
}

// The name is copied first: nobody would let go a device that was noted before memory ran out.
std::optional<BusyDevices::Claim> BusyDevices::claim(const Text& device, DeviceUse use)
{
    Text name = device;
    const Lock guard(mutex_);
    if (!inUse_.emplace(device, use).second)
        return std::nullopt;
    return Claim(shared_from_this(), std::move(name));
}

std::optional<BusyDevices::Claim> BusyDevices::claimWhenFree(const Text& device, DeviceUse use,
                                                             const std::stop_token& stop)
{
    Text name = device;
    Lock guard(mutex_);
    if (!freed_.wait(guard, stop, [&]() REQUIRES(mutex_) { return !inUse_.contains(device); }))
        return std::nullopt;
    inUse_.emplace(device, use);
    return Claim(shared_from_this(), std::move(name));
}

bool BusyDevices::isWriting(const Text& device)
{
    const Lock guard(mutex_);
    const auto found = inUse_.find(device);
    return found != inUse_.end() && found->second == DeviceUse::writing;
}

}

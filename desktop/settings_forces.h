// SPDX-License-Identifier: GPL-3.0-or-later
// Checkpoints the write-ahead log of the settings' file: brings it into the file itself, and has the disk
// take both, behind the window thread. A disk may take half a second for that.
#pragma once

#include "platform/text.h"
#include "platform/worker.h"

#include <atomic>
#include <memory>

namespace desktop
{

class SettingsForces
{
public:
    explicit SettingsForces(Text path) : path_(std::move(path)) {}

    // Begins unless it is under way. What is written meanwhile is left for the next time.
    void begin();

    // Once for each time that all of the log was brought over: it may be cut off, if nothing came since.
    bool hasEnded()
    {
        return *state_ == ForceState::ended && state_->exchange(ForceState::idle) == ForceState::ended;
    }

    bool isUnderWay() const { return *state_ == ForceState::underWay; }

private:
    enum class ForceState { idle, underWay, ended };

    Text path_;
    std::shared_ptr<std::atomic<ForceState>> state_ =
        std::make_shared<std::atomic<ForceState>>(ForceState::idle);
    Worker worker_{Worker::AtEnd::abandons};
};

}

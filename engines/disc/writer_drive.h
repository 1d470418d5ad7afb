// SPDX-License-Identifier: GPL-3.0-or-later
// What the disc writer needs of one recorder, real or one that makes disc images.
#pragma once

#include "engines/disc/cd_sound.h"
#include "platform/text.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <stop_token>
#include <vector>

namespace disc
{

struct WriteSettings {
    std::int16_t speed = 1;
    bool closeDisc = false;
    bool simulate = false;
    bool autoEject = true;
};

using WriteProgress = std::function<void(std::int16_t percent)>; // of all tracks together

// One writing, ready to begin.
class WriteRun
{
public:
    virtual ~WriteRun() = default; // lets go of the recorder

    // On a worker thread; returns when the disc is finished. After a stop it leaves off as soon as the
    // recorder can. Fails with the reason, as a person should read it.
    virtual void write(const WriteProgress& progress, const std::stop_token& stop) = 0;
};

// Never used by two threads at the same time, but by several in turn.
class WriterDrive
{
public:
    virtual ~WriterDrive() = default;

    virtual Text name() const = 0;         // as the user sees it: "Vendor Model (/dev/sr0)"
    virtual Text device() const = 0;       // the same as that of a reader on this device
    virtual std::int16_t type() const = 0; // 1 for a recorder, 2 for the one that makes disc images

    virtual bool hasWritableDisc() = 0;

    // Takes hold of the recorder and makes sure that the writing can begin: the window waits for it. There
    // are 1 to 99 tracks. Fails with the reason; nothing is held then.
    virtual std::unique_ptr<WriteRun> prepare(std::vector<CdSound> tracks, const WriteSettings& settings) = 0;
};

// The recorders of one kind. Waits for a search for them that is under way, 10 s at most.
using ListWriters = std::function<std::vector<std::shared_ptr<WriterDrive>>()>;

}

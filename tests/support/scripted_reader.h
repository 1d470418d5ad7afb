// SPDX-License-Identifier: GPL-3.0-or-later
// A drive that does what the test says.
#pragma once

#include "engines/disc/reader_drive.h"
#include "platform/failure.h"
#include "tests/support/disc_sounds.h"

#include <atomic>
#include <condition_variable>
#include <mutex>

class ScriptedReader final : public disc::ReaderDrive
{
public:
    explicit ScriptedReader(Text device) : device_(std::move(device)) {}

    // Before it is used, or while nothing uses it.
    disc::DiscContents disc{{{true, 0, 300}, {true, 300, 400}}, 700};
    Text failure;                // for which every track fails, behind its first sectors
    std::int32_t unreadable = 0; // sectors of each track
    std::int32_t sectorsAtOnce = 10;
    std::int32_t holdsBehind = -1; // sectors of the track; then it answers nobody until `letGo`

    std::atomic<int> asked = 0; // for its contents
    std::atomic<int> reads = 0;
    std::atomic<bool> isHolding = false;

    Text name() const override { return "Maker Model (" + device_ + ")"; }
    Text device() const override { return device_; }

    disc::DiscContents contents() override
    {
        ++asked;
        return disc;
    }

    std::int32_t readTrack(std::int16_t track, disc::TrackSink& sink, const std::stop_token& stop) override
    {
        ++reads;
        const Text all = sound(track);
        const std::int64_t piece = sectorsAtOnce * bytesOfSector;
        for (std::int64_t at = 0; at < std::int64_t(all.size()) && !stop.stop_requested(); at += piece) {
            if (at / bytesOfSector == holdsBehind)
                hold();
            const auto bytes =
                std::as_bytes(std::span(all)).subspan(std::size_t(at)).first(std::size_t(piece));
            sink.take({bytes.begin(), bytes.end()});
            if (!failure.empty())
                throw Failure{Trouble::deviceInputOutput, failure};
        }
        return unreadable;
    }

    Text sound(std::int16_t track) const
    {
        return noise(disc.tracks.at(std::size_t(track) - 1).sectors * bytesOfSector, std::uint64_t(track));
    }

    void letGo()
    {
        const std::lock_guard guard(mutex_);
        isLetGo_ = true;
        changed_.notify_all();
    }

private:
    void hold()
    {
        std::unique_lock guard(mutex_);
        isHolding = true;
        changed_.wait(guard, [&] { return isLetGo_; });
        isHolding = false;
    }

    Text device_;
    std::mutex mutex_;
    std::condition_variable changed_;
    bool isLetGo_ = false;
};

// SPDX-License-Identifier: GPL-3.0-or-later
// A recorder that does what the test says.
#pragma once

#include "engines/disc/writer_drive.h"
#include "platform/failure.h"

#include <atomic>
#include <condition_variable>
#include <mutex>

class ScriptedWriter final : public disc::WriterDrive
{
public:
    explicit ScriptedWriter(Text device) : device_(std::move(device)) {}

    bool hasDisc = true;
    Text refusal;                                          // of every writing, before it begins
    Text failure;                                          // of every writing, at its end
    std::vector<std::int16_t> percents{0, 50, 40, 50, 99}; // as it reports them
    bool holds = false;                                    // before its end, until it is let go or stopped

    std::atomic<int> checks = 0;
    std::vector<Text> tracks; // of the last writing
    disc::WriteSettings settings;
    std::atomic<bool> isHolding = false;
    std::atomic<bool> wasStopped = false;

    Text name() const override { return "Maker Writer (" + device_ + ")"; }
    Text device() const override { return device_; }
    std::int16_t type() const override { return 1; }

    bool hasWritableDisc() override
    {
        ++checks;
        return hasDisc;
    }

    std::unique_ptr<disc::WriteRun> prepare(std::vector<disc::CdSound> sounds,
                                            const disc::WriteSettings& withSettings) override
    {
        if (!refusal.empty())
            throw Failure{Trouble::permissionDenied, refusal};
        tracks.clear();
        for (const auto& sound : sounds)
            tracks.push_back(sound.path());
        settings = withSettings;
        return std::make_unique<Run>(*this);
    }

    void letGo()
    {
        const std::lock_guard guard(mutex_);
        holds = false;
        changed_.notify_all();
    }

private:
    class Run final : public disc::WriteRun
    {
    public:
        explicit Run(ScriptedWriter& itsWriter) : writer_(itsWriter) {}

        void write(const disc::WriteProgress& progress, const std::stop_token& stop) override
        {
            for (const auto percent : writer_.percents)
                progress(percent);
            writer_.hold(stop);
            if (!writer_.failure.empty())
                throw Failure{Trouble::deviceInputOutput, writer_.failure};
        }

    private:
        ScriptedWriter& writer_;
    };

    void hold(const std::stop_token& stop)
    {
        std::unique_lock guard(mutex_);
        isHolding = true;
        changed_.wait(guard, stop, [&] { return !holds; });
        isHolding = false;
        wasStopped = stop.stop_requested();
    }

    Text device_;
    std::mutex mutex_;
    std::condition_variable_any changed_;
};

// SPDX-License-Identifier: GPL-3.0-or-later
#include "modules/discs/burn_writer.h"

#include "files/errand.h"
#include "modules/discs/burn_job.h"
#include "platform/failure.h"

namespace disc
{

namespace
{

constexpr std::int16_t recorderType = 1;

// The run, or why there is none.
struct Prepared {
    std::unique_ptr<WriteRun> run;
    Failure failure;
};

bool takesDisc(const Text& device)
{
    try {
        return BurnRecorder(device).hasWritableDisc();
    } catch (const Failure&) {
        return false;
    }
}

Prepared preparedRun(const Text& device, std::vector<CdSound> tracks, const WriteSettings& settings)
{
    try {
        return {makeBurnJob(std::make_unique<BurnRecorder>(device), std::move(tracks), settings), {}};
    } catch (const Failure& failure) {
        return {nullptr, failure};
    }
}

class BurnWriter final : public WriterDrive
{
public:
    BurnWriter(OpticalDevice device, std::chrono::milliseconds patience) :
        device_(std::move(device)), patience_(patience)
    {
    }

    Text name() const override { return device_.name; }
    Text device() const override { return device_.path; }
    std::int16_t type() const override { return recorderType; }

    bool hasWritableDisc() override
    {
        if (check_ && !check_->hasEnded())
            return false;
        check_.emplace([path = device_.path] { return takesDisc(path); });
        return check_->result(patience_).value_or(false);
    }

    std::unique_ptr<WriteRun> prepare(std::vector<CdSound> tracks, const WriteSettings& settings) override
    {
        const auto shared = std::make_shared<std::vector<CdSound>>(std::move(tracks));
        files::Errand<Prepared> preparing([path = device_.path, shared, settings] {
            return preparedRun(path, std::move(*shared), settings);
        });
        auto prepared = preparing.result(patience_);
        if (!prepared)
            throw Failure{Trouble::deviceUnavailable, "The recorder does not answer."};
        if (!prepared->run)
            throw prepared->failure;
        return std::move(prepared->run);
    }

private:
    const OpticalDevice device_;
    const std::chrono::milliseconds patience_;
    std::optional<files::Errand<bool>> check_;
};

}

std::shared_ptr<WriterDrive> makeBurnWriter(const OpticalDevice& device, std::chrono::milliseconds patience)
{
    return std::make_shared<BurnWriter>(device, patience);
}

}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "modules/discs/burn_job.h"

#include "engines/disc/disc_contents.h"
#include "modules/discs/burn_source.h"
#include "platform/failure.h"
#include "platform/mutex.h"

#include <libburn/libburn.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <utility>

namespace disc
{

using namespace burn;

namespace
{

constexpr int mostTracks = 99;
constexpr std::int64_t pauseBetweenTracks = 152; // sectors, when each track is written by itself
constexpr auto lookPeriod = std::chrono::milliseconds(100);

// 1x is 176.4 kB/s; fractions are rounded up, as the library asks.
constexpr int speedOf(std::int16_t factor) { return (std::max<int>(factor, 1) * 1764 + 9) / 10; }

struct FreeDisc {
    void operator()(burn_disc* disc) const { burn_disc_free(disc); }
};
struct FreeOptions {
    void operator()(burn_write_opts* options) const { burn_write_opts_free(options); }
};

// One session; the library's parts hold each other from the adding on.
std::unique_ptr<burn_disc, FreeDisc> discOf(const std::vector<std::shared_ptr<BurnSource>>& sources)
{
    std::unique_ptr<burn_disc, FreeDisc> disc(burn_disc_create());
    burn_session* const session = burn_session_create();
    burn_disc_add_session(disc.get(), session, BURN_POS_END);
    for (const auto& source : sources) {
        burn_track* const track = burn_track_create();
        burn_track_define_data(track, 0, 0, 1, BURN_AUDIO);
        burn_source* const reader = newBurnSource(source);
        burn_track_set_source(track, reader);
        burn_source_free(reader);
        burn_session_add_track(session, track, BURN_POS_END);
        burn_track_free(track);
    }
    burn_session_free(session);
    return disc;
}

class BurnJob final : public WriteRun
{
public:
    BurnJob(std::unique_ptr<BurnRecorder> recorder, std::vector<CdSound> tracks,
            const WriteSettings& settings) :
        recorder_(std::move(recorder)),
        settings_(settings)
    {
        for (CdSound& track : tracks)
            sources_.push_back(std::make_shared<BurnSource>(std::move(track)));
        requireFittingDisc();
        disc_ = discOf(sources_);
        chooseOptions();
        requireSuitableJob();
    }

    void write(const WriteProgress& progress, const std::stop_token& stop) override
    {
        BurnRecorder::complaint({});
        burn_drive_set_speed(recorder_->drive(), 0, speedOf(settings_.speed));
        burn_disc_write(options_.get(), disc_.get());
        waitForTheEnd(progress, stop);
        if (stop.stop_requested())
            return;
        if (burn_drive_wrote_well(recorder_->drive()) == 0)
            throw Failure{Trouble::deviceInputOutput,
                          BurnRecorder::complaint("The disc could not be written.")};
        requireWholeTracks();
        if (settings_.autoEject && !settings_.simulate)
            recorder_->ejectAtTheEnd();
    }

private:
    bool isSessionAtOnce() const { return recorder_->hasBlankDisc(); }

    std::int64_t sectors() const
    {
        std::int64_t all = 0;
        for (const auto& source : sources_)
            all += source->sectors();
        return all;
    }

    std::int64_t sectorsOnDisc() const
    {
        const auto pauses = isSessionAtOnce() ? 0 : static_cast<std::int64_t>(sources_.size()) - 1;
        return sectors() + pauses * pauseBetweenTracks;
    }

    void requireFittingDisc() const
    {
        if (!recorder_->hasWritableDisc())
            throw Failure{Trouble::deviceUnavailable,
                          "There is no disc in the recorder that can be written."};
        if (recorder_->tracksOnDisc() + static_cast<int>(sources_.size()) > mostTracks)
            throw Failure{Trouble::deviceInputOutput, "A disc has room for 99 tracks at most."};
        if (sectorsOnDisc() > recorder_->freeSectors())
            throw Failure{Trouble::diskFull, "The tracks are too long for the disc."};
        if (settings_.simulate && !recorder_->canSimulate())
            throw Failure{Trouble::deviceInputOutput, "This recorder cannot simulate."};
    }

    void chooseOptions()
    {
        const bool atOnce = isSessionAtOnce();
        options_.reset(burn_write_opts_new(recorder_->drive()));
        burn_write_opts_set_write_type(options_.get(), atOnce ? BURN_WRITE_SAO : BURN_WRITE_TAO,
                                       atOnce ? BURN_BLOCK_SAO : BURN_BLOCK_MODE1);
        burn_write_opts_set_multi(options_.get(), settings_.closeDisc ? 0 : 1);
        burn_write_opts_set_simulate(options_.get(), settings_.simulate ? 1 : 0);
        burn_write_opts_set_underrun_proof(options_.get(), 1);
        burn_write_opts_set_perform_opc(options_.get(), 0);
    }

    void requireSuitableJob() const
    {
        std::array<char, BURN_REASONS_LEN> reasons{};
        if (burn_precheck_write(options_.get(), disc_.get(), reasons.data(), 0) != 1)
            throw Failure{Trouble::deviceInputOutput,
                          BurnRecorder::complaint("The recorder refuses: " + Text(reasons.data()))};
    }

    // The library does its work on a thread of its own, and says how far it is only when asked.
    void waitForTheEnd(const WriteProgress& progress, const std::stop_token& stop)
    {
        bool isCancelled = false;
        burn_progress now = {};
        for (auto status = BURN_DRIVE_WRITING; status != BURN_DRIVE_IDLE;
             status = burn_drive_get_status(recorder_->drive(), &now)) {
            if (status == BURN_DRIVE_WRITING)
                tell(progress, now);
            rest(isCancelled ? std::stop_token() : stop);
            if (stop.stop_requested() && !std::exchange(isCancelled, true))
                burn_drive_cancel(recorder_->drive());
        }
    }

    static void rest(const std::stop_token& stop)
    {
        Mutex mutex;
        Lock lock(mutex);
        Condition().wait(
            lock, stop, [] { return false; }, std::chrono::steady_clock::now() + lookPeriod);
    }

    void tell(const WriteProgress& progress, const burn_progress& now)
    {
        std::int64_t done = now.sector;
        for (int i = 0; i < now.track && i < static_cast<int>(sources_.size()); ++i)
            done += sources_[static_cast<std::size_t>(i)]->sectors();
        const auto percent =
            static_cast<std::int16_t>(std::clamp<std::int64_t>(done * 100 / sectors(), 0, 100));
        if (percent <= told_)
            return;
        told_ = percent;
        progress(percent);
    }

    void requireWholeTracks() const
    {
        for (const auto& source : sources_)
            if (source->wasCutShort())
                throw Failure{Trouble::endOfFile,
                              source->path() + " could not be read to its end: the disc is silent there."};
    }

    std::unique_ptr<BurnRecorder> recorder_; // the first member: the job's parts go before it is let go
    WriteSettings settings_;
    std::vector<std::shared_ptr<BurnSource>> sources_;
    std::unique_ptr<burn_disc, FreeDisc> disc_;
    std::unique_ptr<burn_write_opts, FreeOptions> options_;
    std::int16_t told_ = -1;
};

}

std::unique_ptr<WriteRun> makeBurnJob(std::unique_ptr<BurnRecorder> recorder, std::vector<CdSound> tracks,
                                      const WriteSettings& settings)
{
    return std::make_unique<BurnJob>(std::move(recorder), std::move(tracks), settings);
}

}

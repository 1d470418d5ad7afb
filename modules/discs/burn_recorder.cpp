// SPDX-License-Identifier: GPL-3.0-or-later
#include "modules/discs/burn_recorder.h"

#include "platform/failure.h"

#include <libburn/libburn.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <mutex>
#include <string_view>

namespace disc
{

using namespace burn;

namespace
{

constexpr int bytesCounted = 2048; // that the library takes a sector for
constexpr auto turnLimit = std::chrono::seconds(10);

// The library takes hold of one recorder at a time.
std::timed_mutex& turn()
{
    static std::timed_mutex mutex;
    return mutex;
}

// Its messages are kept for `complaint`, none is printed, and its handling of signals is never asked for.
bool isStarted()
{
    static const bool started = [] {
        char keep[] = "SORRY", print[] = "NEVER", name[] = "";
        return burn_initialize() == 1 && burn_msgs_set_severities(keep, print, name) == 1;
    }();
    return started;
}

bool isFatal(std::string_view severity) { return severity == "FATAL" || severity == "ABORT"; }

bool isCd(burn_drive* drive)
{
    constexpr int cdR = 0x09, cdRw = 0x0A;
    int profile = 0;
    std::array<char, 80> name{};
    burn_disc_get_profile(drive, &profile, name.data());
    return profile == cdR || profile == cdRw;
}

}

struct BurnRecorder::Parts {
    burn_drive_info* infos = nullptr;
    bool ejects = false;
};

BurnRecorder::BurnRecorder(const Text& device) : parts_(std::make_unique<Parts>())
{
    constexpr int load = 1;
    std::unique_lock lock(turn(), std::defer_lock);
    if (!lock.try_lock_for(turnLimit) || !isStarted())
        throw Failure{Trouble::deviceUnavailable, "Another recorder does not answer."};
    complaint({});
    Text address = device;
    address.resize(BURN_DRIVE_ADR_LEN);
    if (burn_drive_scan_and_grab(&parts_->infos, address.data(), load) == 1)
        return;
    burn_drive_info_free(parts_->infos);
    throw Failure{Trouble::permissionDenied, complaint("The recorder is in use.")};
}

BurnRecorder::~BurnRecorder()
{
    const std::lock_guard lock(turn());
    burn_drive_release(drive(), parts_->ejects ? 1 : 0);
    burn_drive_info_free(parts_->infos);
}

burn_drive* BurnRecorder::drive() const { return parts_->infos[0].drive; }

// A disc whose last writing was broken off can count as one to append to, without a place for it.
bool BurnRecorder::hasWritableDisc() const
{
    const auto status = burn_disc_get_status(drive());
    return (status == BURN_DISC_BLANK || status == BURN_DISC_APPENDABLE) && isCd(drive()) &&
           burn_disc_next_track_is_damaged(drive(), 0) == 0 && freeSectors() > 0;
}

bool BurnRecorder::hasBlankDisc() const { return burn_disc_get_status(drive()) == BURN_DISC_BLANK; }

bool BurnRecorder::canSimulate() const { return parts_->infos[0].write_simulate != 0; }

std::int32_t BurnRecorder::freeSectors() const
{
    return static_cast<std::int32_t>(burn_disc_available_space(drive(), nullptr) / bytesCounted);
}

int BurnRecorder::tracksOnDisc() const
{
    burn_disc* const disc = burn_drive_get_disc(drive());
    if (disc == nullptr)
        return 0;
    int sessionCount = 0, all = 0;
    burn_session** const sessions = burn_disc_get_sessions(disc, &sessionCount);
    for (int i = 0; i < sessionCount; ++i) {
        int tracks = 0;
        burn_session_get_tracks(sessions[i], &tracks);
        all += tracks;
    }
    burn_disc_free(disc);
    return all;
}

void BurnRecorder::ejectAtTheEnd() { parts_->ejects = true; }

// What the library says after the first is what follows from it, but for what it ends with.
Text BurnRecorder::complaint(const Text& otherwise)
{
    char least[] = "SORRY";
    std::array<char, BURN_MSGS_MESSAGE_LEN> message{};
    std::array<char, 80> severity{};
    int code = 0, systemError = 0;
    Text first, firstFatal;
    while (burn_msgs_obtain(least, &code, message.data(), &systemError, severity.data()) == 1) {
        Text& words = isFatal(severity.data()) ? firstFatal : first;
        words = words.empty() ? message.data() : words;
    }
    for (const Text& words : {firstFatal, first})
        if (!words.empty())
            return words;
    return otherwise;
}

}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "modules/discs/cdio_disc.h"

#include "modules/discs/sector_rescue.h"

#include <cdio/cdio.h>
#include <cdio/logging.h>
#include <cdio/mmc.h>
#include <cdio/mmc_ll_cmds.h>
#include <cdio/paranoia/cdda.h>

#include <algorithm>
#include <chrono>
#include <thread>

namespace disc
{

namespace
{

constexpr auto readyLimit = std::chrono::seconds(10);
constexpr auto readyPause = std::chrono::milliseconds(20);

constexpr std::uint16_t mostTableBytes = 8192;

// The library's own handler prints, and ends the program on an error.
void ignoreLog(cdio_log_level_t, const char*) {}

CdIo_t* opened(const Text& device)
{
    cdio_log_set_handler(&ignoreLog);
    return cdio_open_linux(device.c_str());
}

constexpr int notReady = 2, unitAttention = 6; // sense keys, and a code (SPC-3)
constexpr int noMedium = 0x3A;

// Why the drive refused its last command.
struct Sense {
    int key = 0;
    int code = 0;
    int qualifier = 0;
};

Sense lastSense(const CdIo_t* cdio)
{
    cdio_mmc_request_sense_t* sense = nullptr;
    if (mmc_last_cmd_sense(cdio, &sense) <= 0 || sense == nullptr)
        return {};
    const Sense last{sense->sense_key, sense->asc, sense->ascq};
    cdio_free(sense);
    return last;
}

// Whether the drive says that its disc will be there, or that it has just changed.
bool isOnTheWay(const Sense& sense)
{
    constexpr int becomingReady = 0x04, soon = 0x01;
    return sense.key == unitAttention ||
           (sense.key == notReady && sense.code == becomingReady && sense.qualifier == soon);
}

// The answer to READ TOC/PMA/ATIP in that format (MMC-5); empty when there is none.
std::vector<std::byte> tableIn(const CdIo_t* cdio, std::uint8_t format)
{
    constexpr std::uint8_t asTimes = 2;
    std::vector<std::byte> table(mostTableBytes);
    const mmc_cdb_t command = {
        {0x43, asTimes, format, 0, 0, 0, 0, mostTableBytes >> 8, mostTableBytes & 0xFF}};
    if (mmc_run_cmd(cdio, 0, &command, SCSI_MMC_DATA_READ, mostTableBytes, table.data()) != DRIVER_OP_SUCCESS)
        return {};
    const auto length = std::to_integer<std::size_t>(table[0]) << 8 | std::to_integer<std::size_t>(table[1]);
    table.resize(std::min(length + 2, table.size()));
    return table;
}

// Where the sessions end. The library knows of no end but the disc's and that of sound before data.
std::vector<std::int32_t> sessionEnds(const CdIo_t* cdio)
{
    constexpr std::uint8_t fullFormat = 2;
    constexpr std::byte leadOut{0xA2};
    constexpr std::size_t headerBytes = 4, entryBytes = 11;
    const auto table = tableIn(cdio, fullFormat);
    const auto number = [&](std::size_t at) { return std::to_integer<std::int32_t>(table[at]); };
    std::vector<std::int32_t> ends;
    for (std::size_t at = headerBytes; at + entryBytes <= table.size(); at += entryBytes)
        if (table[at + 3] == leadOut)
            ends.push_back((number(at + 8) * 60 + number(at + 9)) * sectorsPerSecond + number(at + 10) -
                           CDIO_PREGAP_SECTORS);
    return ends;
}

DiscTrack trackOf(cdrom_drive_t* sound, track_t track, const std::vector<std::int32_t>& ends)
{
    const std::int32_t start = cdio_cddap_track_firstsector(sound, track);
    std::int32_t end = cdio_cddap_track_lastsector(sound, track) + 1;
    for (const std::int32_t sessionEnd : ends)
        if (sessionEnd > start)
            end = std::min(end, sessionEnd);
    return {cdio_cddap_track_audiop(sound, track) == 1, start, std::max(end - start, 0)};
}

}

struct CdioDisc::Parts {
    explicit Parts(const Text& device) : cdio(opened(device)) {}

    ~Parts()
    {
        if (sound != nullptr)
            cdio_cddap_close_no_free_cdio(sound);
        if (cdio != nullptr)
            cdio_destroy(cdio);
    }

    bool openSound();

    CdIo_t* cdio;
    cdrom_drive_t* sound = nullptr;
    bool isEmpty = false;
};

// The order of the bytes is told before the opening, which would guess it from the sound, and wrongly. An
// opening that finds no readable sound still knows the tracks.
bool CdioDisc::Parts::openSound()
{
    if (sound == nullptr && cdio != nullptr)
        sound = cdio_cddap_identify_cdio(cdio, CDDA_MESSAGE_FORGETIT, nullptr);
    if (sound == nullptr || sound->opened != 0)
        return sound != nullptr;
    sound->bigendianp = 0;
    cdio_cddap_open(sound);
    sound->error_retry = 0; // a batch that fails is read sector by sector instead
    return sound->opened != 0;
}

CdioDisc::CdioDisc(const Text& device) : parts_(std::make_unique<Parts>(device)) {}
CdioDisc::CdioDisc(CdioDisc&&) noexcept = default;
CdioDisc::~CdioDisc() = default;

bool CdioDisc::isOpen() const { return parts_->cdio != nullptr; }

bool CdioDisc::isEmpty() const { return !isOpen() || parts_->isEmpty; }

bool CdioDisc::isReady() const
{
    const auto limit = std::chrono::steady_clock::now() + readyLimit;
    while (parts_->cdio != nullptr && mmc_test_unit_ready(parts_->cdio, 0) != DRIVER_OP_SUCCESS) {
        const Sense sense = lastSense(parts_->cdio);
        parts_->isEmpty = sense.key == notReady && sense.code == noMedium;
        if (!isOnTheWay(sense) || std::chrono::steady_clock::now() > limit)
            return false;
        std::this_thread::sleep_for(readyPause);
    }
    return parts_->cdio != nullptr;
}

std::vector<std::byte> CdioDisc::table() const { return tableIn(parts_->cdio, 0); }

DiscContents CdioDisc::contents()
{
    if (!parts_->openSound())
        return {};
    cdrom_drive_t* const sound = parts_->sound;
    const int first = cdio_get_first_track_num(parts_->cdio);
    const int count = cdio_cddap_tracks(sound);
    if (count == CDIO_INVALID_TRACK)
        return {};
    const auto ends = sessionEnds(parts_->cdio);
    DiscContents contents;
    contents.tracks.resize(static_cast<std::size_t>(std::max(first, 1) - 1), {false, 0, 0, true});
    for (int track = first; track < first + count; ++track)
        contents.tracks.push_back(trackOf(sound, static_cast<track_t>(track), ends));
    contents.leadOut = cdio_get_track_lsn(parts_->cdio, CDIO_CDROM_LEADOUT_TRACK);
    return contents;
}

bool CdioDisc::read(std::int32_t sector, std::span<std::byte> samples)
{
    const auto count = static_cast<long>(samples.size()) / sectorBytes;
    return parts_->openSound() && cdio_cddap_read(parts_->sound, samples.data(), sector, count) == count;
}

bool CdioDisc::rescue(std::int32_t sector, std::span<std::byte> samples, const std::stop_token& stop)
{
    return parts_->openSound() && rescueSector(parts_->sound, sector, samples, stop);
}

}

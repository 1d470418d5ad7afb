// SPDX-License-Identifier: GPL-3.0-or-later
#include "modules/discs/sector_rescue.h"

#include "engines/disc/disc_contents.h"

#include <cdio/cdio.h>
#include <cdio/paranoia/cdda.h>
#include <cdio/paranoia/paranoia.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <memory>
#include <utility>
#include <vector>

namespace disc
{

namespace
{

// How a sector is rescued. Without sound sectors before it the library goes round for ever; batches that are
// large lose their good sectors with the bad one.
constexpr int runUp = 40;
constexpr int rescueBatch = 8;
constexpr int rescueCache = 100;
constexpr int rescueRetries = 5;
constexpr int rescueReads = 300;
constexpr auto rescueLimit = std::chrono::seconds(20);

// The patience that is left for one sector. The library's callbacks carry nothing of the caller's, so that it
// is the thread's.
struct Patience {
    const std::stop_token& stop;
    std::int32_t sector;
    int reads = rescueReads;
    std::chrono::steady_clock::time_point end = std::chrono::steady_clock::now() + rescueLimit;
    std::vector<std::byte> answer = {}; // the drive's own for that sector, if it gave one
    bool wasSkipped = false;

    void keepAnswer(const void* samples, std::int32_t from, long count)
    {
        if (samples == nullptr || sector < from || sector >= from + count)
            return;
        const auto* const begin = static_cast<const std::byte*>(samples) + (sector - from) * sectorBytes;
        answer.assign(begin, begin + sectorBytes);
    }

    bool isAtAnEnd()
    {
        return reads-- <= 0 || stop.stop_requested() || std::chrono::steady_clock::now() > end;
    }
};

thread_local Patience* patience = nullptr;

// Takes the place of the library's reading while it rescues. A missing medium is the one thing that it gives
// up for. It reads to nowhere where only the drive's head is to move.
long readPatiently(cdrom_drive_t* drive, void* samples, lsn_t sector, long count)
{
    if (patience->isAtAnEnd()) {
        errno = ENOMEDIUM;
        return -1;
    }
    std::vector<std::byte> nowhere(samples == nullptr ? static_cast<std::size_t>(count) * sectorBytes : 0);
    const auto fit = std::min<long>(count, drive->nsectors);
    const auto result = cdio_read_audio_sectors(drive->p_cdio, samples == nullptr ? nowhere.data() : samples,
                                                sector, static_cast<std::uint32_t>(fit));
    errno = 0;
    if (result != DRIVER_OP_SUCCESS)
        return -1;
    patience->keepAnswer(samples, sector, fit);
    return fit;
}

// The position is in 16-bit samples, and may lie a little before the sector that is meant.
void noteSkipping(long position, paranoia_cb_mode_t what)
{
    patience->wasSkipped |= what == PARANOIA_CB_SKIP && position / CD_FRAMEWORDS >= patience->sector - 1;
}

struct FreeRescuer {
    void operator()(cdrom_paranoia_t* rescuer) const { cdio_paranoia_free(rescuer); }
};
using Rescuer = std::unique_ptr<cdrom_paranoia_t, FreeRescuer>;

Rescuer rescuerAt(cdrom_drive_t* sound, std::int32_t sector)
{
    Rescuer rescuer(cdio_paranoia_init(sound));
    cdio_paranoia_modeset(rescuer.get(), PARANOIA_MODE_FULL ^ PARANOIA_MODE_NEVERSKIP);
    cdio_paranoia_cachemodel_size(rescuer.get(), rescueCache);
    cdio_paranoia_seek(rescuer.get(), sector, SEEK_SET);
    return rescuer;
}

// Sector `sector` as the library pieced it together and verified it, on the way there from `begin`; nullptr
// where it could not.
const std::int16_t* verified(cdrom_paranoia_t* rescuer, std::int32_t begin, std::int32_t sector)
{
    const std::int16_t* samples = nullptr;
    for (std::int32_t at = begin; at <= sector; ++at) {
        samples = cdio_paranoia_read_limited(rescuer, &noteSkipping, rescueRetries);
        if (samples == nullptr || patience->wasSkipped)
            return nullptr;
    }
    return samples;
}

// For a sector that never came the library has silence, and does not always say so. One that came and could
// not be verified is as good as any that is read plainly.
bool rescued(cdrom_drive_t* sound, std::int32_t sector, std::span<std::byte> samples)
{
    const std::int32_t begin = std::max(sector - runUp, cdio_cddap_disc_firstsector(sound));
    const Rescuer rescuer = rescuerAt(sound, begin);
    const std::int16_t* const best = verified(rescuer.get(), begin, sector);
    if (patience->answer.empty())
        return false;
    std::memcpy(samples.data(), best != nullptr ? static_cast<const void*>(best) : patience->answer.data(),
                sectorBytes);
    return true;
}

}

bool rescueSector(cdrom_drive_s* sound, std::int32_t sector, std::span<std::byte> samples,
                  const std::stop_token& stop)
{
    Patience left{stop, sector};
    patience = &left;
    const auto readPlainly = std::exchange(sound->read_audio, &readPatiently);
    const auto plainBatch = std::exchange(sound->nsectors, rescueBatch);
    const bool came = rescued(sound, sector, samples);
    sound->read_audio = readPlainly;
    sound->nsectors = plainBatch;
    patience = nullptr;
    return came;
}

}

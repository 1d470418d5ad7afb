// SPDX-License-Identifier: GPL-3.0-or-later
// The last that can be done for a sector that a drive does not read: libcdio's paranoia goes about it from
// many sides, within limits of time and reads.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <stop_token>

struct cdrom_drive_s;

namespace disc
{

// Fills `samples` with the one sector; false when it did not come. Ends soon after a stop.
bool rescueSector(cdrom_drive_s* sound, std::int32_t sector, std::span<std::byte> samples,
                  const std::stop_token& stop);

}

// SPDX-License-Identifier: GPL-3.0-or-later
// A session of tracks on its way onto a disc.
#pragma once

#include "engines/disc/writer_drive.h"
#include "modules/discs/burn_recorder.h"

#include <memory>
#include <vector>

namespace disc
{

// Makes sure that the recorder can write the tracks as the settings say; the job holds it from then on.
// Fails with the reason.
std::unique_ptr<WriteRun> makeBurnJob(std::unique_ptr<BurnRecorder> recorder, std::vector<CdSound> tracks,
                                      const WriteSettings& settings);

}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/audio/hearing_log.h"

namespace audio
{

bool NotedRun::continues(const NotedRun& before) const
{
    if (kind != before.kind || serial != before.serial)
        return false;
    return kind == Heard::sound ? source - at == before.source - before.at : source == before.source;
}

void HearingLog::note(const NotedRun& run)
{
    const std::size_t writes = writes_.load();
    // With no place left the run stays unnoted for now; the next call will try again.
    if (run.continues(last_) || writes - reads_.load() == places)
        return;
    noted_[writes % places] = run;
    last_ = run;
    writes_ = writes + 1;
}

void HearingLog::collect()
{
    for (std::size_t reads = reads_.load(); reads != writes_.load(); reads_ = ++reads)
        runs_.push_back(noted_[reads % places]);
}

const NotedRun& HearingLog::runAt(std::int64_t at)
{
    collect();
    while (runs_.size() > 1 && runs_[1].at <= at)
        runs_.pop_front();
    return runs_.front();
}

std::optional<std::int64_t> HearingLog::end() const
{
    if (runs_.back().kind != Heard::end)
        return std::nullopt;
    return runs_.back().at;
}

}

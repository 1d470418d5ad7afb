// SPDX-License-Identifier: GPL-3.0-or-later
// A lock-free queue of what a stream was given, so that a place in the stream tells what is heard there. The
// thread that fills the stream notes, another asks; neither waits for the other.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <deque>
#include <optional>

namespace audio
{

enum class Heard { nothing, silence, sound, end };

// A run of the stream, from its frame `at` to the next run: the source's frames from `source` on, or silence
// while the source stands there.
struct NotedRun {
    Heard kind = Heard::nothing;
    std::int64_t at = 0;
    std::int64_t source = 0;
    std::uint64_t serial = 0; // of the feed

    bool continues(const NotedRun& before) const;
};

class HearingLog
{
public:
    // The filling thread: `run` begins. What merely continues the run before is not noted again.
    void note(const NotedRun& run);

    // The asking thread: the run in which the stream's frame `at` lies. Places before it are forgotten.
    const NotedRun& runAt(std::int64_t at);

    // The run behind the one that `runAt` gave, if it knew of one.
    const NotedRun* nextRun() const { return runs_.size() > 1 ? &runs_[1] : nullptr; }

    // Where the end of the feed lies in the stream, if `runAt` knew of it.
    std::optional<std::int64_t> end() const;

private:
    void collect();

    static constexpr std::size_t places = 64;

    std::array<NotedRun, places> noted_;
    std::atomic<std::size_t> writes_{0};
    std::atomic<std::size_t> reads_{0};
    NotedRun last_;                         // noted; the filling thread's
    std::deque<NotedRun> runs_{NotedRun{}}; // the asking thread's, never empty
};

}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/list_program.h"
#include "support/simulated_sound.h"

#include <sys/resource.h>

#include <algorithm>
#include <doctest/doctest.h>

namespace
{

// The thread sanitizer follows no more than 65536 calls inside each other.
#ifdef __SANITIZE_THREAD__
constexpr int nested = 1000;
#else
constexpr int nested = 10000;
#endif

// As the program itself does at its start: the nest is as deep as the stack.
void raiseStackLimit()
{
    rlimit limit{};
    getrlimit(RLIMIT_STACK, &limit);
    limit.rlim_cur = std::min<rlim_t>(limit.rlim_max, rlim_t{256} << 20);
    setrlimit(RLIMIT_STACK, &limit);
}

// Starts runs inside each other's waits, and notes in which order they come back.
class Nest
{
public:
    Nest(const std::vector<Text>& rows, std::function<void(PlayListEditor&)> command) :
        sound(start.platform), command_(std::move(command))
    {
        raiseStackLimit();
        start.fill(rows);
    }

    // Comes back when the last run has. `deepest` are the steps of the waits behind the last start.
    void run(std::deque<std::function<void()>> deepest)
    {
        deepest_ = std::move(deepest);
        startOne();
    }

    bool unwoundInOrder() const
    {
        return unwound_.size() == nested &&
               std::is_sorted(unwound_.begin(), unwound_.end(), std::greater<int>());
    }
    int ended() const { return static_cast<int>(unwound_.size()); }

    ListProgram start;
    SimulatedSound sound;

private:
    void startOne()
    {
        const int level = ++started_;
        if (level < nested)
            start.platform.scriptedPump.steps = {[this] { startOne(); }};
        else
            start.platform.scriptedPump.steps = deepest_;
        start.platform.log.clear();
        command_(start.list);
        unwound_.push_back(level);
    }

    std::function<void(PlayListEditor&)> command_;
    std::deque<std::function<void()>> deepest_;
    std::vector<int> unwound_;
    int started_ = 0;
};

}

TEST_CASE("Ten thousand starts inside each other end at one stop, the last first")
{
    Nest nest({"/0.mp3", "/1.mp3"}, [](PlayListEditor& list) { list.Playimg1_Click(); });
    nest.run({[&] {
        CHECK(nest.ended() == 0);
        nest.start.list.Stopimg1_Click();
    }});
    CHECK(nest.unwoundInOrder());
    CHECK(nest.start.list.labtemp1.Caption() == "1");
    CHECK(nest.start.player.mp3filename.Caption() == "/0.mp3");
}

TEST_CASE("Ten thousand starts inside each other end with the list, the last first")
{
    Nest nest({"/0.mp3", "/1.mp3"}, [](PlayListEditor& list) { list.startFromFirst(); });
    nest.run({[&] { nest.sound.trackEnds(); },
              [&] {
                  CHECK(nest.ended() == 0);
                  CHECK(nest.sound.mp3File == "/1.mp3");
                  nest.sound.trackEnds();
              }});
    CHECK(nest.unwoundInOrder());
    CHECK(nest.start.list.labtemp1.Caption() == "0");
    CHECK(nest.start.list.RunIndex == 1);
}

TEST_CASE("Ten thousand runs left at a WAV row end one by one, each with an MP3 that begins and ends")
{
    Nest nest({"/0.wav", "/1.mp3"}, [](PlayListEditor& list) { list.startFromFirst(); });
    std::deque<std::function<void()>> tracks;
    for (int track = 0; track < nested; ++track) {
        tracks.push_back([&nest, track] {
            CHECK(nest.ended() == track);
            nest.start.list.PlayListLB.setListIndex(1);
            nest.start.list.PlayListLB_DblClick();
        });
        tracks.push_back([&nest] { nest.sound.trackEnds(); });
    }
    nest.run(tracks);
    CHECK(nest.unwoundInOrder());
    CHECK(nest.start.platform.scriptedPump.steps.empty());
}

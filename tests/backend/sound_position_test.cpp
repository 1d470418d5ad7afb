// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/files.h"
#include "tests/support/recordings.h"
#include "tests/support/sound_files.h"
#include "tests/support/sound_parts.h"

#include <doctest/doctest.h>

using namespace std::chrono_literals;

namespace
{

constexpr std::size_t second = 44100;

double milliseconds(std::chrono::duration<double, std::milli> time) { return time.count(); }

// How far the position is from what the recording holds, milliseconds. The recording comes in pieces of 10
// ms, so that its last frame is up to that old.
double errorOf(std::int32_t position, const Recorder& recorder)
{
    const auto now = Recorder::Clock::now();
    const auto [frame, when] = recorder.latest();
    const double heard = static_cast<double>(numberOf(frame)) / 44.1 + milliseconds(now - when) - 10;
    return std::abs(position - heard);
}

// What nine of ten are within; the rest is the machine's.
double nineOfTen(std::vector<double> errors)
{
    std::ranges::sort(errors);
    return errors[errors.size() * 9 / 10];
}

}

TEST_CASE("The position is what is heard, and never goes back")
{
    SoundServer server;
    SoundParts parts;
    parts.openWav(putWav(parts.folder / "a.wav", counting(second * 3)));
    Recorder recorder(server);
    const double best = atBest(10, [&] {
        parts.wav->setCommand("Open");
        parts.wav->setCommand("Play");
        std::vector<double> errors;
        std::int32_t last = 0;
        while (last < 2500) {
            const std::int32_t position = parts.wav->Position();
            CHECK(position >= last);
            last = position;
            if (last > 50)
                errors.push_back(errorOf(position, recorder));
            std::this_thread::sleep_for(3ms);
        }
        return nineOfTen(errors);
    });
    CHECK(best < 10);
    MESSAGE("Position from what was heard: nine of ten within " << best << " ms");
}

TEST_CASE("The frame that is reported is the one that is heard")
{
    SoundServer server;
    SoundParts parts;
    parts.mp3->Open(putWav(parts.folder / "a.wav", counting(second * 20)), "");
    Recorder recorder(server);
    const double best = atBest(30, [&] {
        parts.mp3->Stop();
        const auto before = recordedToTheEnd(recorder).size();
        parts.mp3->Play();
        recorder.waitForSound(before);
        std::vector<double> errors;
        while (parts.mp3->CurrentFrame() < 60) {
            const double position = parts.mp3Milliseconds() + 13; // the middle of the frame
            errors.push_back(errorOf(static_cast<std::int32_t>(position), recorder));
            std::this_thread::sleep_for(3ms);
        }
        return nineOfTen(errors);
    });
    CHECK(best < 30);
}

TEST_CASE("A file has ended when its last frame was heard")
{
    SoundServer server;
    SoundParts parts;
    parts.mp3->Open(putWav(parts.folder / "a.wav", counting(second / 4)), "");
    Recorder recorder(server);
    std::size_t times = 0;
    const auto error = [&] {
        const auto from = recorder.size();
        parts.mp3->Play();
        const auto began = recorder.waitForSound(from);
        REQUIRE(waitUntil([&] { return parts.mp3->IsPlaying() == 0; }));
        const double off = std::abs(millisecondsSince(began) - 250);
        CHECK(parts.mp3->CurrentFrame() == 0);
        CHECK(parts.activity.running == 0);
        ++times;
        CHECK(waitUntil([&] { return parts.post.count() == times; })); // the waiting window is woken
        return off;
    };
    const double best = atBest(12, [&] { // the recording comes in pieces of 10 ms
        std::vector<double> errors(7);
        std::ranges::generate(errors, error);
        std::ranges::sort(errors);
        return errors[3];
    });
    CHECK(best < 12);
    MESSAGE("The end from the last frame, median: " << best << " ms");
}

TEST_CASE("An ended MP3 file plays again from its start, an ended WAV file stands at its length")
{
    SoundServer server;
    SoundParts parts;
    const Text mp3 = parts.folder / "a.mp3";
    putFile(mp3, mp3Bytes(noise(second / 4)));
    Recorder recorder(server);
    parts.mp3->Open(mp3, "");
    for (int time = 0; time < 2; ++time) {
        parts.mp3->Play();
        CHECK(waitUntil([&] { return parts.mp3->IsPlaying() == 0; }));
    }
    const auto sound = noise(second / 4, 2);
    parts.openWav(putWav(parts.folder / "a.wav", sound));
    parts.wav->setCommand("Play");
    CHECK(waitUntil([&] { return parts.wav->Position() == 250; }));
    parts.wav->setCommand("Play");
    CHECK(parts.wav->Position() == 250);

    StereoFrames expected;
    for (const auto& part : {decoded(mp3), decoded(mp3), sound})
        expected.insert(expected.end(), part.begin(), part.end());
    CHECK((sounding(recordedToTheEnd(recorder)) == sounding(expected)));
    CHECK(waitUntil([&] { return parts.activity.running == 0; }));
}

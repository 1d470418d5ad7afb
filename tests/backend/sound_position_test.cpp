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

}

TEST_CASE("The position is what is heard, and never goes back")
{
    SoundServer server;
    SoundParts parts;
    parts.openWav(putWav(parts.folder / "a.wav", counting(second * 3)));
    Recorder recorder(server);
    parts.wav->setCommand("Play");
    recorder.waitForSound();
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
    std::ranges::sort(errors);
    CHECK(errors[errors.size() / 2] < 10);
    CHECK(errors[errors.size() * 9 / 10] < 20); // the rest is the machine's
    MESSAGE("Position from what was heard: median " << errors[errors.size() / 2] << " ms, nine of ten within "
                                                    << errors[errors.size() * 9 / 10] << " ms");
}

TEST_CASE("The frame that is reported is the one that is heard")
{
    SoundServer server;
    SoundParts parts;
    parts.mp3->Open(putWav(parts.folder / "a.wav", counting(second * 2)), "");
    Recorder recorder(server);
    parts.mp3->Play();
    recorder.waitForSound();
    std::vector<double> errors;
    while (parts.mp3->CurrentFrame() < 60) {
        const double position = parts.mp3Milliseconds() + 13; // the middle of the frame
        errors.push_back(errorOf(static_cast<std::int32_t>(position), recorder));
        std::this_thread::sleep_for(3ms);
    }
    std::ranges::sort(errors);
    CHECK(errors[errors.size() * 9 / 10] < 30);
}

TEST_CASE("A file has ended when its last frame was heard")
{
    SoundServer server;
    SoundParts parts;
    parts.mp3->Open(putWav(parts.folder / "a.wav", counting(second / 4)), "");
    Recorder recorder(server);
    std::vector<double> errors;
    for (std::size_t time = 0; time < 7; ++time) {
        const auto from = recorder.size();
        parts.mp3->Play();
        const auto began = recorder.waitForSound(from);
        REQUIRE(waitUntil([&] { return parts.mp3->IsPlaying() == 0; }));
        errors.push_back(std::abs(milliseconds(Recorder::Clock::now() - began) - 250));
        CHECK(parts.mp3->CurrentFrame() == 0);
        CHECK(parts.activity.running == 0);
        CHECK(waitUntil([&] { return parts.post.count() == time + 1; })); // the waiting window is woken
    }
    std::ranges::sort(errors);
    CHECK(errors[3] < 12); // the recording comes in pieces of 10 ms
    MESSAGE("The end from the last frame: best " << errors[0] << " ms, median " << errors[3] << " ms");
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

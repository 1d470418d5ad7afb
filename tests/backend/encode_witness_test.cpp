// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/codec/encode_file.h"
#include "tests/support/info_reader.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/tool.h"
#include "tests/support/wav_files.h"

#include <doctest/doctest.h>

#include <cstdlib>
#include <sstream>

using namespace codec;

namespace
{

constexpr int fullRates[] = {320, 256, 224, 192, 160, 128, 112, 96, 80, 64, 56, 48, 40, 32};
constexpr int halfRates[] = {160, 144, 128, 112, 96, 80, 64, 56, 48, 40, 32, 24, 16, 8};

// Every bit rate takes minutes; `VELMORA_SWEEP=1` in the environment asks for it.
bool isSweep() { return std::getenv("VELMORA_SWEEP") != nullptr; }

struct Made {
    Text path;
    int frames; // with the tag's
    bool hasTag;
    bool isEmpty;
};

// The lines of `words` that hold one of `signs` and none of the `expected`.
std::vector<Text> complaints(const Text& words, const std::vector<Text>& signs,
                             const std::vector<Text>& expected)
{
    const auto holds = [](const Text& line, const std::vector<Text>& parts) {
        return std::any_of(parts.begin(), parts.end(),
                           [&](const Text& part) { return line.find(part) != Text::npos; });
    };
    std::vector<Text> found;
    std::istringstream lines(words);
    for (Text line; std::getline(lines, line);)
        if (holds(line, signs) && !holds(line, expected))
            found.push_back(line);
    return found;
}

void checkMpg123(const Made& made)
{
    const auto result = runTool({"mpg123", "-t", made.path});
    CHECK(result.status == 0);
    CHECK(complaints(result.words, {"arning", "rror", "Note"}, {}) == std::vector<Text>{});
}

// The format is named: a file of a few frames is too little to guess it by. The small frames of low bit rates
// have no place for the length.
void checkFfmpeg(const Made& made)
{
    std::vector<Text> expected;
    if (!made.hasTag)
        expected.push_back("Estimating duration from bitrate");
    if (made.isEmpty)
        expected.push_back("Output file is empty");
    const auto result =
        runTool({"ffmpeg", "-nostdin", "-v", "warning", "-f", "mp3", "-i", made.path, "-f", "null", "-"});
    CHECK(result.status == 0);
    CHECK(complaints(result.words, {""}, expected) == std::vector<Text>{});
}

void checkMp3val(const Made& made)
{
    std::vector<Text> expected{"No supported tags in the file"};
    if (made.frames < 10)
        expected.push_back("Too few MPEG frames");
    const auto result = runTool({"mp3val", made.path});
    CHECK(result.status == 0);
    CHECK(complaints(result.words, {"WARNING", "ERROR"}, expected) == std::vector<Text>{});
    CHECK(result.words.find(std::to_string(made.frames) + " MPEG frames") != Text::npos);
}

struct Length {
    const char* what;
    std::int64_t seconds;
    std::int64_t samples; // and so many
};

std::vector<Length> lengths()
{
    std::vector<Length> all{{"nothing", 0, 0},
                            {"one sample", 0, 1},
                            {"one frame", 0, 1152},
                            {"eight seconds", 8, 0},
                            {"twelve seconds", 12, 0}};
    if (isSweep())
        all.push_back({"long", 200, 333});
    return all;
}

}

TEST_CASE("Other programs find nothing to say against what is encoded")
{
    TemporaryFolder folder;
    const Text wav = folder / "source.wav";
    const Text mp3 = folder / "made.mp3";
    for (const bool half : {false, true})
        for (const int channels : {1, 2})
            for (const auto& length : lengths()) {
                const int rate = half ? 22050 : 44100;
                const auto samples = length.seconds * rate + length.samples;
                putPcmWav(wav, music(samples, rate, channels));
                for (std::size_t i = 0; i < std::size(fullRates); i += isSweep() ? 1 : 5) {
                    const int kilobits = half ? halfRates[i] : fullRates[i];
                    CAPTURE(rate);
                    CAPTURE(channels);
                    CAPTURE(kilobits);
                    CAPTURE(Text(length.what));
                    encodeFile(wav, mp3, {kilobits * 1000, half}, 2);
                    const Text bytes = fileBytes(mp3);
                    const Made made{mp3, countFrames(bytes), readInfoTag(bytes).present, samples == 0};
                    checkMpg123(made);
                    checkFfmpeg(made);
                    checkMp3val(made);
                }
            }
}

TEST_CASE("Other programs decode a sound to its own length wherever the format tells it")
{
    TemporaryFolder folder;
    struct Made {
        bool half;
        int kilobits;
    };
    for (const Made& made : {Made{false, 128}, {false, 320}, {true, 64}})
        for (const auto& length : lengths()) {
            const int rate = made.half ? 22050 : 44100;
            const auto samples = length.seconds * rate + length.samples;
            CAPTURE(made.kilobits);
            CAPTURE(Text(length.what));
            putPcmWav(folder / "source.wav", music(samples, rate));
            encodeFile(folder / "source.wav", folder / "made.mp3", {made.kilobits * 1000, made.half}, 2);
            runTool({"mpg123", "-q", "-w", folder / "made.wav", folder / "made.mp3"});
            CHECK(readWav(folder / "made.wav").frames() == samples);
        }
}

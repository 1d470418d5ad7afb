// SPDX-License-Identifier: GPL-3.0-or-later
// Files with random damage: whatever they hold, nothing crashes, hangs, or is left behind.
#include "engines/codec/decode_file.h"
#include "engines/codec/encode_file.h"
#include "engines/formats/frame_scan.h"
#include "engines/formats/mp3_probe.h"
#include "engines/formats/mpg123_decoder.h"
#include "engines/formats/wav_header.h"
#include "tests/support/failures.h"
#include "tests/support/lame_alone.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/wav_files.h"

#include <doctest/doctest.h>
#include <random>

using namespace codec;
using namespace formats;

namespace
{

class Mutator
{
public:
    explicit Mutator(unsigned seed) : random_(seed) {}

    // `front` bytes at the file's beginning, where the headers are, are hit as often as all the others.
    Text damaged(Text bytes, std::size_t front)
    {
        for (std::size_t count = below(6) + 1; count > 0 && !bytes.empty(); --count) {
            const auto at = below(below(2) ? bytes.size() : std::min(front, bytes.size()));
            switch (below(5)) {
            case 0:
                bytes[at] = static_cast<char>(below(256));
                break;
            case 1:
                bytes[at] ^= static_cast<char>(1 << below(8));
                break;
            case 2:
                bytes.erase(at, below(40));
                break;
            case 3:
                bytes.insert(at, Text(below(40), static_cast<char>(below(2) ? 0xFF : 0)));
                break;
            default:
                bytes.resize(below(4) ? bytes.size() : at);
            }
        }
        return bytes;
    }

private:
    std::size_t below(std::size_t limit) { return limit ? random_() % limit : 0; }

    std::minstd_rand random_;
};

}

TEST_CASE("Damaged WAV files are encoded or refused")
{
    TemporaryFolder folder;
    const Pcm pcm = music(6000, 22050);
    std::vector<Text> sources;
    for (const int format : {SF_FORMAT_WAV | SF_FORMAT_PCM_16, SF_FORMAT_WAV | SF_FORMAT_IMA_ADPCM,
                             SF_FORMAT_WAV | SF_FORMAT_MS_ADPCM, SF_FORMAT_WAVEX | SF_FORMAT_PCM_24,
                             SF_FORMAT_WAV | SF_FORMAT_FLOAT, SF_FORMAT_RF64 | SF_FORMAT_PCM_16})
        sources.push_back(fileBytes(putWavAs(folder / "a.wav", pcm, format)));
    Mutator mutator(11);
    int encoded = 0;
    for (int i = 0; i < 300; ++i) {
        CAPTURE(i);
        putFile(folder / "a.wav", mutator.damaged(sources[static_cast<std::size_t>(i) % sources.size()], 80));
        const int number = failureOf([&] {
            encodeFile(folder / "a.wav", folder / "a.mp3", {32000, true}, 2);
        });
        CHECK((number == 0 || number == 57));
        CHECK(std::filesystem::remove(folder / "a.mp3") == (number == 0));
        encoded += number == 0;
    }
    CHECK(encoded > 60);
    CHECK(namesInFolder(folder.path()) == std::set<Text>{"a.wav"});
}

TEST_CASE("Damaged MP3 files are decoded or refused")
{
    TemporaryFolder folder;
    const std::vector<Text> sources{
        lameAlone(music(20000), 128, 44100),
        lameAlone(music(10000, 22050, 1), 32, 22050),
        Text("ID3\3\0\0\0\0\0\x05hello", 15) + lameAlone(music(20000), 64, 44100) + "TAG" + Text(125, ' '),
        lameAlone(music(6000), 128, 44100) + lameAlone(music(6000, 22050, 1), 32, 22050),
    };
    Mutator mutator(12);
    int decoded = 0;
    for (int i = 0; i < 600; ++i) {
        CAPTURE(i);
        putFile(folder / "a.mp3",
                mutator.damaged(sources[static_cast<std::size_t>(i) % sources.size()], 300));
        const int number = failureOf([&] { decodeFile(folder / "a.mp3", folder / "a.wav", 2); });
        CHECK((number == 0 || number == 57));
        CHECK(std::filesystem::remove(folder / "a.wav") == (number == 0));
        decoded += number == 0;
    }
    CHECK(decoded > 300);
    CHECK(namesInFolder(folder.path()) == std::set<Text>{"a.mp3"});
}

namespace
{

Text decodedFromStart(const Text& path)
{
    const auto file = files::InputFile::openOrFail(path);
    const auto place = findMp3(file);
    Mpg123Decoder decoder({file, 0, file->size()}, {.channels = channelsAt(*place, file), .keepsRate = true});
    Text sound;
    for (std::span<const std::int16_t> samples; decoder.next(samples);)
        sound.append(reinterpret_cast<const char*>(samples.data()), samples.size_bytes());
    return sound;
}

}

TEST_CASE("Frames with damage inside are decoded in pieces as from the start")
{
    TemporaryFolder folder;
    const Text sources[] = {
        lameAlone(music(22050 * 62, 22050, 1), 16, 22050),
        lameAlone(music(44100 * 62), 64, 44100),
    };
    std::minstd_rand random(14);
    int inPieces = 0;
    for (int i = 0; i < 40; ++i) {
        CAPTURE(i);
        Text bytes = sources[i % 2];
        for (unsigned count = random() % 12 + 1; count > 0; --count)
            bytes[1000 + random() % (bytes.size() - 1000)] = static_cast<char>(random() >> 8);
        putFile(folder / "a.mp3", bytes);
        inPieces += scanFrames(files::InputFile::openOrFail(folder / "a.mp3")).has_value();
        decodeFile(folder / "a.mp3", folder / "a.wav", 2);
        CHECK(fileBytes(folder / "a.wav").substr(sizeof(WavHeader)) == decodedFromStart(folder / "a.mp3"));
    }
    CHECK(inPieces > 20);
}

TEST_CASE("A search for frames in noise ends")
{
    TemporaryFolder folder;
    std::minstd_rand random(13);
    for (int i = 0; i < 20; ++i) {
        Text bytes(200000, '\0');
        for (auto& byte : bytes)
            byte = static_cast<char>(random() >> 8);
        for (std::size_t at = 0; at + 4 < bytes.size(); at += 40 + random() % 4000)
            bytes.replace(at, 3, i % 2 ? "\xFF\xFB\x90" : Text("\xFF\xFB\x00", 3));
        putFile(folder / "a.mp3", bytes);
        const auto file = files::InputFile::openOrFail(folder / "a.mp3");
        CHECK_FALSE(scanFrames(file));
        findMp3(file);
    }
}

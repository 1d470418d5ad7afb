// SPDX-License-Identifier: GPL-3.0-or-later
// What the headers of WAV files say of their sound, true or not.
#include "engines/formats/wav_layout.h"

#include "engines/formats/wav_source.h"
#include "tests/support/failures.h"
#include "tests/support/files.h"
#include "tests/support/temporary_folder.h"

#include <doctest/doctest.h>

using namespace formats;

namespace
{

Text little(std::uint64_t value, int bytes)
{
    Text text;
    for (; bytes > 0; --bytes, value >>= 8)
        text += static_cast<char>(value);
    return text;
}

Text chunk(const Text& name, const Text& content) { return name + little(content.size(), 4) + content; }

Text formatOf(std::uint64_t coding, std::uint64_t rate)
{
    return chunk("fmt ", little(coding, 2) + little(2, 2) + little(rate, 4) + little(4 * rate, 4) +
                             little(4, 2) + little(16, 2));
}

const Text format = formatOf(1, 44100);
const Text sound(400, 's');

Text longSize(std::uint64_t bytes) { return chunk("ds64", little(0, 8) + little(bytes, 8) + little(0, 12)); }

// Its "data" says `size`.
Text wav(const Text& kind, const Text& before, std::uint64_t size, const Text& behind)
{
    return kind + little(0, 4) + "WAVE" + before + "data" + little(size, 4) + behind;
}

constexpr std::uint64_t unknown = 0xFFFFFFFF;

}

TEST_CASE("Where the sound of a WAV file ends is what its header says, within the file")
{
    const struct {
        const char* what;
        Text bytes;
        std::int64_t soundBytes;
        bool isUnfilled;
    } cases[] = {
        {"as it is", wav("RIFF", format, 400, sound), 400, false},
        {"more than there is", wav("RIFF", format, 4000, sound), 400, false},
        {"less than there is", wav("RIFF", format, 100, sound), 100, false},
        {"no sound before another chunk", wav("RIFF", format, 0, chunk("LIST", "INFO")), 0, false},
        {"no sound and nothing behind", wav("RIFF", format, 0, ""), 0, false},
        {"a size that was never filled in", wav("RIFF", format, 0, "abc\xFF" + sound), 404, true},
        {"the same before low bytes", wav("RIFF", format, 0, "abc\x01" + sound), 404, true},
        {"the same before two bytes", wav("RIFF", format, 0, "ab"), 2, true},
        {"a size that is not known", wav("RIFF", format, unknown, sound), 400, true},
        {"a long size", wav("RF64", longSize(300) + format, unknown, sound), 300, false},
        {"a long size that is not used", wav("RF64", longSize(300) + format, 200, sound), 200, false},
        {"a long size that is missing", wav("RF64", format, unknown, sound), 400, true},
        {"a long size that was never filled in", wav("RF64", longSize(0) + format, unknown, '\xFF' + sound),
         401, true},
        {"a long size below nothing", wav("RF64", longSize(~std::uint64_t{0}) + format, unknown, sound), 400,
         false},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        const TemporaryFolder folder;
        putFile(folder / "a.wav", c.bytes);
        const auto layout = wavLayout(files::InputFile::openOrFail(folder / "a.wav"));
        REQUIRE(layout);
        CHECK(layout->end - layout->begin == c.soundBytes);
        CHECK(layout->isUnfilled == c.isUnfilled);
    }
}

TEST_CASE("A size that was never filled in is filled in as the file's own")
{
    const TemporaryFolder folder;
    const auto filled = [&](const Text& bytes) {
        putFile(folder / "a.wav", bytes);
        const auto layout = wavLayout(files::InputFile::openOrFail(folder / "a.wav"));
        REQUIRE(layout);
        Text size;
        for (int i = 0; i < layout->sizeBytes; ++i)
            size += static_cast<char>(layout->sizeByte(i));
        return size;
    };
    const Text high = '\xFF' + sound;
    CHECK(filled(wav("RIFF", format, 0, high)) == little(401, 4));
    CHECK(filled(wav("RF64", longSize(0) + format, unknown, high)) == little(401, 8));
}

TEST_CASE("A file of more than four gigabytes whose size says four ends there")
{
    const TemporaryFolder folder;
    putFile(folder / "a.wav", wav("RIFF", format, unknown, sound));
    std::filesystem::resize_file(folder / "a.wav", 5'000'000'000);
    const auto layout = wavLayout(files::InputFile::openOrFail(folder / "a.wav"));
    REQUIRE(layout);
    CHECK(layout->end - layout->begin == 0xFFFFFFFF);
    CHECK_FALSE(layout->isUnfilled);
}

TEST_CASE("An extensible format that is too short for its places has none")
{
    const TemporaryFolder folder;
    putFile(folder / "a.wav", wav("RIFF", formatOf(0xFFFE, 44100), 400, sound));
    const auto layout = wavLayout(files::InputFile::openOrFail(folder / "a.wav"));
    REQUIRE(layout);
    CHECK(layout->places == 0);
    CHECK(layout->coding == 0xFFFE);
}

TEST_CASE("A rate that nobody hears is not encoded, and said so")
{
    const TemporaryFolder folder;
    for (const std::uint64_t rate : {999, 768001}) {
        CAPTURE(rate);
        putFile(folder / "a.wav", wav("RIFF", formatOf(1, rate), 400, sound));
        Text words;
        guarded([&](const Failure& failure) { words = failure.description; },
                [&] { WavSource(files::InputFile::openOrFail(folder / "a.wav")); });
        CHECK(words == "This number of channels or samples a second cannot be encoded.");
    }
}

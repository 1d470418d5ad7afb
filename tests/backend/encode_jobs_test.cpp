// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/codec/encode_jobs.h"

#include "tests/support/child.h"
#include "tests/support/failures.h"
#include "tests/support/info_reader.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/wav_files.h"
#include "tests/support/window_thread.h"

#include <doctest/doctest.h>

#include <unistd.h>

namespace
{

// The encoder in a program of its own: everything that it tells is kept.
struct Bench {
    TemporaryFolder folder;
    WindowThread window;
    ToldDesktop desktop;
    std::unique_ptr<Mp3Enc> encoder = codec::makeEncodeJobs(window, desktop, NoPartNotes::instance());
    std::vector<Text> told;
    int done = 0;

    Bench()
    {
        encoder->Progress.calls([this](std::int32_t position) { told.push_back(std::to_string(position)); });
        encoder->Done.calls([this] {
            told.push_back("done");
            ++done;
        });
    }

    Text wav(const Text& name, std::int64_t frames = 30000, int rate = 44100)
    {
        return putPcmWav(folder / name, music(frames, rate));
    }

    bool runUntilDone(int count)
    {
        return window.runUntil([&] { return done >= count; });
    }

    int kilobitsOf(const Text& name)
    {
        return static_cast<std::uint8_t>(fileBytes(folder / name).at(2)) >> 4;
    }
};

}

TEST_CASE("The bit rate reads back as it was set, also one that the format does not have")
{
    Bench bench;
    CHECK(bench.encoder->Bitrate() == 128000);
    bench.encoder->setBitrate(100000);
    CHECK(bench.encoder->Bitrate() == 100000);
    bench.encoder->setBitrate(Text("320000"));
    CHECK(bench.encoder->Bitrate() == 320000);
    CHECK(failureOf([&] { bench.encoder->setBitrate(Text("fast")); }) == 13);
    CHECK(failureOf([&] { bench.encoder->setBitrate(Text("")); }) == 13);
    CHECK(failureOf([&] { bench.encoder->setBitrate(Text("99999999999")); }) == 6);
    CHECK(bench.encoder->Bitrate() == 320000);
}

TEST_CASE("A conversion tells its progress, then that it is done, once")
{
    Bench bench;
    CHECK(bench.encoder->Length() == 0);
    CHECK(bench.encoder->Open(bench.wav("a.wav", 44100 * 12), bench.folder / "a.mp3") == 0);
    CHECK(bench.encoder->Length() == 1000);
    bench.encoder->Start();
    REQUIRE(bench.runUntilDone(1));
    REQUIRE(bench.told.size() > 10);
    CHECK(bench.told.back() == "done");
    CHECK(bench.told[bench.told.size() - 2] == "1000");
    CHECK(bench.window.waiting() == 0);
    CHECK(bench.desktop.notes().empty());
    CHECK(readInfoTag(fileBytes(bench.folder / "a.mp3")).present);
}

TEST_CASE("A conversion has the settings and the paths that stood when it was started")
{
    Bench bench;
    bench.wav("a.wav");
    bench.wav("b.wav", 15000);
    bench.encoder->setBitrate(320000);
    bench.encoder->Open(bench.folder / "a.wav", bench.folder / "a.mp3");
    bench.encoder->Start();
    bench.encoder->setBitrate(64000);
    bench.encoder->setHalfSampleRate(true);
    bench.encoder->Open(bench.folder / "b.wav", bench.folder / "b.mp3");
    bench.encoder->Start();
    bench.encoder->setBitrate(32000);
    bench.encoder->Open("nothing", "nowhere");
    REQUIRE(bench.runUntilDone(2));
    CHECK(bench.kilobitsOf("a.mp3") == 14);
    CHECK(bench.kilobitsOf("b.mp3") == 8);
    CHECK(readInfoTag(fileBytes(bench.folder / "b.mp3")).frames < 30);
    CHECK(namesInFolder(bench.folder.path()) == std::set<Text>{"a.mp3", "a.wav", "b.mp3", "b.wav"});
    CHECK(bench.desktop.notes().empty());
}

TEST_CASE("Conversions run one after the other, each done before the next tells anything")
{
    Bench bench;
    for (const Text name : {"a", "b", "c"}) {
        bench.encoder->Open(bench.wav(name + ".wav", 44100), bench.folder / (name + ".mp3"));
        bench.encoder->Start();
    }
    REQUIRE(bench.runUntilDone(3));
    int last = 0;
    for (const auto& what : bench.told) {
        const int position = what == "done" ? 0 : std::stoi(what);
        CHECK((position == 0 || position > last));
        last = position;
    }
}

TEST_CASE("A file that cannot be converted is done all the same, and the desktop is told once")
{
    Bench bench;
    putFile(bench.folder / "text.wav", "no sound");
    bench.wav("good.wav");
    struct Case {
        Text what;
        Text input;
        Text output;
    };
    const Case cases[] = {
        {"no input", bench.folder / "missing.wav", bench.folder / "a.mp3"},
        {"a text", bench.folder / "text.wav", bench.folder / "a.mp3"},
        {"a folder", bench.folder.path(), bench.folder / "a.mp3"},
        {"nothing named", "", ""},
        {"one file for both", bench.folder / "good.wav", bench.folder / "good.wav"},
    };
    int done = 0;
    for (const auto& c : cases) {
        CAPTURE(c.what);
        CHECK(bench.encoder->Open(c.input, c.output) != 0);
        CHECK(bench.encoder->Length() == 0);
        bench.encoder->Start();
        REQUIRE(bench.runUntilDone(++done));
        REQUIRE(bench.desktop.notes().size() == static_cast<std::size_t>(done));
        CHECK(bench.desktop.notes().back().starts_with("Encoding failed | " + c.input + ": "));
        CHECK(bench.told.back() == "done");
    }
    CHECK(bench.done == done);
    CHECK(namesInFolder(bench.folder.path()) == std::set<Text>{"good.wav", "text.wav"});
}

TEST_CASE("What failed to open is converted if it can be when it is started")
{
    Bench bench;
    CHECK(bench.encoder->Open(bench.folder / "late.wav", bench.folder / "late.mp3") != 0);
    bench.wav("late.wav");
    bench.encoder->Start();
    REQUIRE(bench.runUntilDone(1));
    CHECK(bench.desktop.notes().empty());
    CHECK(namesInFolder(bench.folder.path()) == std::set<Text>{"late.mp3", "late.wav"});
}

TEST_CASE("A start without an opening is done and told")
{
    Bench bench;
    bench.encoder->Start();
    REQUIRE(bench.runUntilDone(1));
    CHECK(bench.desktop.notes().size() == 1);
}

TEST_CASE("Names that are no valid UTF-8 lead to their files")
{
    Bench bench;
    const Text name = "\xFF\xC0 song";
    bench.encoder->Open(bench.wav(name + ".wav"), bench.folder / (name + ".mp3"));
    bench.encoder->Start();
    REQUIRE(bench.runUntilDone(1));
    CHECK(namesInFolder(bench.folder.path()) == std::set<Text>{name + ".mp3", name + ".wav"});
}

TEST_CASE("An encoder that goes away ends its work and leaves nothing")
{
    Bench bench;
    bench.wav("long.wav", 44100 * 60);
    for (int i = 0; i < 3; ++i) {
        bench.encoder->Open(bench.folder / "long.wav", bench.folder / "long.mp3");
        bench.encoder->Start();
    }
    REQUIRE(bench.window.runUntil([&] { return bench.told.size() > 20; }));
    bench.told.clear();
    bench.encoder.reset();
    while (bench.window.runNext())
        ;
    CHECK(bench.told.empty());
    CHECK(bench.desktop.notes().empty());
    CHECK(namesInFolder(bench.folder.path()) == std::set<Text>{"long.wav"});
}

TEST_CASE("An encoder that never worked goes away at once")
{
    Bench bench;
    bench.encoder.reset();
    CHECK(bench.window.waiting() == 0);
}

namespace
{

class PartList final : public PartNotes
{
public:
    explicit PartList(const Text& path) : path_(path) {}
    void note(const Text& part) override { putFile(path_, part); }
    void done(const Text&) override {}

private:
    Text path_;
};

}

TEST_CASE(
    "A program that ends in the middle leaves no file under a final name, and a note of the unfinished one")
{
    TemporaryFolder folder;
    putPcmWav(folder / "long.wav", music(44100 * 60));
    Child program([&] {
        WindowThread window;
        ToldDesktop desktop;
        PartList notes(folder / "noted");
        const auto encoder = codec::makeEncodeJobs(window, desktop, notes);
        int told = 0;
        encoder->Progress.calls([&](std::int32_t) { ++told; });
        encoder->Open(folder / "long.wav", folder / "long.mp3");
        encoder->Start();
        if (window.runUntil([&] { return told > 20; }))
            raise(SIGKILL);
    });
    CHECK(program.wait() == 128 + SIGKILL);
    const auto names = namesInFolder(folder.path());
    CHECK(names.count("long.mp3") == 0);
    REQUIRE(names.size() == 3);
    CHECK(names.count(fileBytes(folder / "noted").substr(folder.path().size() + 1)) == 1);
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/codec/decode_jobs.h"

#include "tests/support/lame_alone.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/wav_files.h"
#include "tests/support/window_thread.h"

#include <doctest/doctest.h>

namespace
{

struct Bench {
    TemporaryFolder folder;
    WindowThread window;
    ToldDesktop desktop;
    std::vector<Text> told;
    int done = 0;
    bool closesWhenDone = true; // as the program does
    std::unique_ptr<codec::DecodeJobs> jobs = std::make_unique<codec::DecodeJobs>(
        window, desktop,
        codec::DecodeJobs::DecodeEvents{
            [this](std::int32_t position) { told.push_back(std::to_string(position)); },
            [this] { finish(); }});

    Text mp3(const Text& name, std::int64_t frames = 30000)
    {
        putFile(folder / name, lameAlone(music(frames), 128, 44100));
        return folder / name;
    }

    bool runUntilDone(int count)
    {
        return window.runUntil([&] { return done >= count; });
    }

private:
    void finish()
    {
        told.push_back("done");
        ++done;
        if (closesWhenDone)
            jobs->close();
    }
};

}

TEST_CASE("A decoding tells its progress, then that it is done, once")
{
    Bench bench;
    CHECK(bench.jobs->length() == 0);
    CHECK(bench.jobs->open(bench.mp3("a.mp3", 44100 * 60), bench.folder / "a.wav") == 0);
    CHECK(bench.jobs->length() == 1000);
    bench.jobs->start();
    REQUIRE(bench.runUntilDone(1));
    REQUIRE(bench.told.size() >= 3);
    CHECK(bench.told.back() == "done");
    CHECK(bench.jobs->length() == 0);
    CHECK(bench.window.waiting() == 0);
    CHECK(bench.desktop.notes().empty());
    CHECK(readWav(bench.folder / "a.wav").frames() == 44100 * 60);
}

TEST_CASE("A second click loses nothing: each start is a job with the paths it was opened with")
{
    Bench bench;
    for (const Text name : {"a", "b", "c"}) {
        bench.jobs->open(bench.mp3(name + ".mp3"), bench.folder / (name + ".wav"));
        bench.jobs->start();
    }
    REQUIRE(bench.runUntilDone(3));
    for (const Text name : {"a.wav", "b.wav", "c.wav"})
        CHECK(readWav(bench.folder / name).frames() == 30000);
    CHECK(bench.jobs->length() == 0);
}

TEST_CASE("Closing in the middle of another job's end keeps what is open")
{
    Bench bench;
    bench.mp3("a.mp3");
    bench.mp3("b.mp3");
    bench.jobs->open(bench.folder / "a.mp3", bench.folder / "a.wav");
    bench.jobs->start();
    bench.jobs->open(bench.folder / "b.mp3", bench.folder / "b.wav");
    REQUIRE(bench.runUntilDone(1));
    CHECK(bench.jobs->length() == 1000);
    bench.jobs->start();
    REQUIRE(bench.runUntilDone(2));
    CHECK(bench.jobs->length() == 0);
    CHECK(readWav(bench.folder / "b.wav").frames() == 30000);
    CHECK(bench.desktop.notes().empty());
}

TEST_CASE("Closing forgets what was opened and not started, and never a running job")
{
    Bench bench;
    bench.jobs->open(bench.mp3("a.mp3"), bench.folder / "a.wav");
    bench.jobs->close();
    CHECK(bench.jobs->length() == 0);

    bench.jobs->open(bench.folder / "a.mp3", bench.folder / "b.wav");
    bench.jobs->start();
    bench.jobs->close();
    CHECK(bench.jobs->length() == 1000);
    REQUIRE(bench.runUntilDone(1));
    CHECK(namesInFolder(bench.folder.path()) == std::set<Text>{"a.mp3", "b.wav"});
    bench.jobs->close();
    CHECK(bench.jobs->length() == 0);
}

TEST_CASE("What was not closed stays open")
{
    Bench bench;
    bench.closesWhenDone = false;
    bench.jobs->open(bench.mp3("a.mp3"), bench.folder / "a.wav");
    bench.jobs->start();
    REQUIRE(bench.runUntilDone(1));
    CHECK(bench.jobs->length() == 1000);
    bench.jobs->close();
    CHECK(bench.jobs->length() == 0);
}

TEST_CASE("A file that cannot be decoded is done all the same, and the desktop is told once")
{
    Bench bench;
    putFile(bench.folder / "text.mp3", "no sound");
    bench.mp3("good.mp3");
    struct Case {
        Text what;
        Text input;
        Text output;
    };
    const Case cases[] = {
        {"no input", bench.folder / "missing.mp3", bench.folder / "a.wav"},
        {"a text", bench.folder / "text.mp3", bench.folder / "a.wav"},
        {"a folder", bench.folder.path(), bench.folder / "a.wav"},
        {"nothing named", "", ""},
        {"one file for both", bench.folder / "good.mp3", bench.folder / "good.mp3"},
    };
    int done = 0;
    for (const auto& c : cases) {
        CAPTURE(c.what);
        CHECK(bench.jobs->open(c.input, c.output) != 0);
        CHECK(bench.jobs->length() == 0);
        bench.jobs->start();
        REQUIRE(bench.runUntilDone(++done));
        REQUIRE(bench.desktop.notes().size() == static_cast<std::size_t>(done));
        CHECK(bench.desktop.notes().back().starts_with("Decoding failed | " + c.input + ": "));
    }
    bench.jobs->start();
    REQUIRE(bench.runUntilDone(done + 1));
    CHECK(namesInFolder(bench.folder.path()) == std::set<Text>{"good.mp3", "text.mp3"});
}

TEST_CASE("Jobs that go away end their work and leave nothing")
{
    Bench bench;
    bench.mp3("long.mp3", 44100 * 200);
    for (int i = 0; i < 3; ++i) {
        bench.jobs->open(bench.folder / "long.mp3", bench.folder / "long.wav");
        bench.jobs->start();
    }
    REQUIRE(bench.window.runUntil([&] { return !bench.told.empty(); }));
    bench.told.clear();
    bench.jobs.reset();
    while (bench.window.runNext())
        ;
    CHECK(bench.told.empty());
    CHECK(bench.desktop.notes().empty());
    CHECK(namesInFolder(bench.folder.path()) == std::set<Text>{"long.mp3"});
}

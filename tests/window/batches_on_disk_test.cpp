// SPDX-License-Identifier: GPL-3.0-or-later
// The batches with the real encoder and decoder, on real folders.
#include "engines/audio/mpg123_play.h"
#include "engines/audio/sound_output.h"
#include "engines/audio/unopened_files.h"
#include "engines/codec/encode_jobs.h"
#include "info/error.h"
#include "platform/part_notes.h"
#include "support/files.h"
#include "support/lame_alone.h"
#include "support/player.h"
#include "support/small_disk.h"
#include "support/temporary_folder.h"
#include "support/waiting.h"
#include "support/wav_files.h"
#include "support/window_thread.h"
#include "workbench/mp3_encoder.h"

#include <doctest/doctest.h>

#include <filesystem>
#include <set>

namespace
{

constexpr std::int64_t frames = 20000; // of each sound

// Window events as they come, but not for ever.
class BoundedPump final : public Pump
{
public:
    void turn() override
    {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        if (deadline_.hasExpired())
            throw StillWaiting();
    }
    void standStill() override { throw StandsStill(); }

private:
    QDeadlineTimer deadline_{20000};
};

class NoActivity final : public Activity
{
public:
    void begin() override {}
    void end() override {}
};

// Fakes, but for what converts.
class ConvertingPlatform final : public FakePlatform
{
public:
    explicit ConvertingPlatform(const Text& stateFolder) : output_(stateFolder + "/levels", activity_)
    {
        outputDirectory = "/";
        scan.folders["/*.*"] = {{FoundFile::directory, "."}};
        store.values[{section::wavToCd, key::hasWriter}] = "no";
    }

    ToldDesktop desktop;

    std::unique_ptr<Mp3Enc> makeMp3Enc() override
    {
        return codec::makeEncodeJobs(toolkit().post(), desktop, NoPartNotes::instance());
    }
    std::unique_ptr<Mp3Play> makeMp3Play() override
    {
        auto fake = FakePlatform::makeMp3Play();
        if (!Mp3Decoder)
            return fake;
        return audio::makeMpg123Play(output_, toolkit().post(), desktop, NoPartNotes::instance(), unopened_);
    }
    Pump& pump() override { return pump_; }

private:
    NoActivity activity_;
    audio::SoundOutput output_;
    audio::UnopenedFiles unopened_{desktop};
    BoundedPump pump_;
};

struct Flow {
    const char* name;
    Text source, target;
    ctl::FileListBox Mp3Encoder::*files;
    ctl::CommandButton Mp3Encoder::*start;
    ctl::CommandButton Mp3Encoder::*exit;
    ctl::Label Mp3Encoder::*output;
    ctl::TextBox Mp3Encoder::*panel;
    ctl::ProgressBar Mp3Encoder::*bar;
};

const Flow encoding = {"encoding",
                       "wav",
                       "mp3",
                       &Mp3Encoder::File1,
                       &Mp3Encoder::StartEncoding,
                       &Mp3Encoder::ExitEnc,
                       &Mp3Encoder::outputdir,
                       &Mp3Encoder::txtEncNowEnc,
                       &Mp3Encoder::ProgressBarEnc};
const Flow decoding = {"decoding",
                       "mp3",
                       "wav",
                       &Mp3Encoder::File2,
                       &Mp3Encoder::Command3,
                       &Mp3Encoder::Command1,
                       &Mp3Encoder::outputdir2,
                       &Mp3Encoder::txtEncNowDec,
                       &Mp3Encoder::ProgressBarDec};

struct Bench {
    const Flow& flow;
    TemporaryFolder folder;
    ConvertingPlatform platform{folder.path()};
    Program program{platform};
    StartUp& player = program.startUp(); // it comes first, as its engine does
    Mp3Encoder& workbench = program.mp3Encoder();

    explicit Bench(const Flow& which) : flow(which)
    {
        std::filesystem::create_directory(folder / "in");
        std::filesystem::create_directory(folder / "out");
        writeTo(folder / "out");
    }

    Text in(const Text& name) { return folder / "in/" + name + "." + flow.source; }
    Text out(const Text& name) { return folder / "out/" + name + "." + flow.target; }
    void writeTo(const Text& path) { (workbench.*flow.output).setCaption(path); }

    void put(const Text& name)
    {
        const Pcm pcm = music(frames);
        if (flow.source == "wav")
            putPcmWav(in(name), pcm);
        else
            putFile(in(name), lameAlone(pcm, 128, 44100));
    }
    void selectAll()
    {
        auto& files = workbench.*flow.files;
        files.setPath(folder / "in");
        for (std::int32_t row = 0; row < files.ListCount(); ++row)
            files.setSelected(row, true);
    }
    void click() { (workbench.*flow.start).Click.raise(); }
    void later(std::function<void()> call) { platform.toolkit().post().post(std::move(call)); }

    // A whole conversion lies there.
    bool isConverted(const Text& path)
    {
        if (flow.target == "wav")
            return readWav(path).frames() == frames;
        return std::filesystem::exists(path) && fileBytes(path).size() > 5000;
    }

    bool isIdle() const
    {
        return (workbench.*flow.panel).Text().empty() && (workbench.*flow.bar).Value() == 0;
    }
    bool saidNothing() { return platform.boxes.shown.empty() && !program.error().Visible(); }
};

template <typename Test>
void inEachFlow(Test&& test)
{
    for (const auto* flow : {&encoding, &decoding}) {
        CAPTURE(Text(flow->name));
        Bench bench(*flow);
        test(bench);
    }
}

}

TEST_CASE("A batch converts each selected file into the other folder")
{
    inEachFlow([](Bench& b) {
        for (const Text name : {"a", "b", "c"})
            b.put(name);
        b.selectAll();
        b.click();
        for (const Text name : {"a", "b", "c"})
            CHECK(b.isConverted(b.out(name)));
        CHECK(namesInFolder(b.folder / "out").size() == 3);
        CHECK(namesInFolder(b.folder / "in").size() == 3);
        CHECK(b.platform.desktop.notes().empty());
        CHECK(b.isIdle());
        CHECK(b.saidNothing());
    });
}

TEST_CASE("One folder for source and target holds both afterwards, the source untouched")
{
    inEachFlow([](Bench& b) {
        b.put("a");
        const Text before = fileBytes(b.in("a"));
        b.writeTo(b.folder / "in");
        b.selectAll();
        b.click();
        CHECK(b.isConverted(b.folder / "in/a." + b.flow.target));
        CHECK(fileBytes(b.in("a")) == before);
        CHECK(namesInFolder(b.folder / "in") == std::set<Text>{"a.mp3", "a.wav"});
    });
}

TEST_CASE("A source that is its own target under another name is refused and stays whole")
{
    inEachFlow([](Bench& b) {
        b.put("a");
        const Text before = fileBytes(b.in("a"));
        std::filesystem::create_symlink(b.in("a"), b.out("a"));
        b.selectAll();
        b.click();
        CHECK(fileBytes(b.in("a")) == before);
        CHECK(std::filesystem::is_symlink(b.out("a")));
        CHECK(b.platform.desktop.notes().size() == 1);
        CHECK(b.isIdle());
    });
}

TEST_CASE("A file that cannot be read is told to the desktop once, leaves nothing, and the batch goes on")
{
    struct Row {
        const char* what;
        std::function<void(Bench&)> spoil; // file b of a, b and c, after it was listed
    };
    const Row rows[] = {
        {"a text under a sound's name", [](Bench& b) { putFile(b.in("b"), "a letter to my aunt"); }},
        {"nothing in it", [](Bench& b) { putFile(b.in("b"), ""); }},
        {"gone since it was listed", [](Bench& b) { std::filesystem::remove(b.in("b")); }},
        {"a folder in its place",
         [](Bench& b) {
             std::filesystem::remove(b.in("b"));
             std::filesystem::create_directory(b.in("b"));
         }},
        {"gone while the first one is converted",
         [](Bench& b) { b.later([&b] { std::filesystem::remove(b.in("b")); }); }},
    };
    for (const auto& row : rows)
        inEachFlow([&](Bench& b) {
            CAPTURE(row.what);
            for (const Text name : {"a", "b", "c"})
                b.put(name);
            b.selectAll();
            row.spoil(b);
            b.click();
            CHECK(namesInFolder(b.folder / "out") ==
                  std::set<Text>{"a." + b.flow.target, "c." + b.flow.target});
            CHECK(b.isConverted(b.out("c")));
            const auto notes = b.platform.desktop.notes();
            REQUIRE(notes.size() == 1);
            CHECK(notes[0].find(b.in("b")) != Text::npos);
            CHECK(b.isIdle());
            CHECK(b.saidNothing());
        });
}

TEST_CASE("An output folder that takes no file costs each file one note, and the batch ends")
{
    struct Row {
        const char* what;
        std::function<void(Bench&)> spoil;
        Text reason;
    };
    const Row rows[] = {
        {"it is missing", [](Bench& b) { b.writeTo(b.folder / "missing"); }, "Path not found"},
        {"it is a file",
         [](Bench& b) {
             putFile(b.folder / "file", "");
             b.writeTo(b.folder / "file");
         },
         ""},
        {"it is missing and ends in a separator", [](Bench& b) { b.writeTo(b.folder / "missing/"); },
         "Path not found"},
    };
    for (const auto& row : rows)
        inEachFlow([&](Bench& b) {
            CAPTURE(row.what);
            b.put("a");
            b.put("b");
            b.selectAll();
            row.spoil(b);
            b.click();
            const auto notes = b.platform.desktop.notes();
            REQUIRE(notes.size() == 2);
            for (const auto& note : notes) {
                CHECK(note.find(" cannot be written: ") != Text::npos);
                CHECK(note.find(row.reason) != Text::npos);
            }
            CHECK(namesInFolder(b.folder / "out").empty());
            CHECK(b.isIdle());
            CHECK(b.saidNothing());
        });
}

TEST_CASE("On a full disk nothing is left, the old file stands, and the batch ends")
{
    inEachFlow([](Bench& b) {
        const SmallDisk disk(b.folder / "small", 4);
        putFile(b.folder / "small/a." + b.flow.target, "old");
        b.put("a");
        b.put("b");
        b.writeTo(b.folder / "small");
        b.selectAll();
        b.click();
        CHECK(namesInFolder(b.folder / "small") == std::set<Text>{"a." + b.flow.target});
        CHECK(fileBytes(b.folder / "small/a." + b.flow.target) == "old");
        const auto notes = b.platform.desktop.notes();
        REQUIRE(notes.size() == 2);
        for (const auto& note : notes)
            CHECK(note.find("Disk full") != Text::npos);
        CHECK(b.isIdle());
    });
}

TEST_CASE("A disk that may only be read keeps what it has, and the batch ends")
{
    inEachFlow([](Bench& b) {
        const Text place = b.folder / "fixed";
        SmallDisk disk(place, 400);
        putFile(place + "/a." + b.flow.target, "old");
        disk.becomeReadOnly();
        b.put("a");
        b.writeTo(place);
        b.selectAll();
        b.click();
        CHECK(fileBytes(place + "/a." + b.flow.target) == "old");
        CHECK(namesInFolder(place).size() == 1);
        CHECK(b.platform.desktop.notes().size() == 1);
        CHECK(b.isIdle());
    });
}

TEST_CASE("A second click during a run loses no file and ends")
{
    inEachFlow([](Bench& b) {
        for (const Text name : {"a", "b", "c"})
            b.put(name);
        b.selectAll();
        b.later([&b] { b.click(); });
        b.click();
        REQUIRE(waitFor([&] { return b.isConverted(b.out("c")) && b.isIdle(); }));
        for (const Text name : {"a", "b"})
            CHECK(b.isConverted(b.out(name)));
        CHECK(b.platform.desktop.notes().empty());
    });
}

TEST_CASE("A run goes on behind the hidden window")
{
    inEachFlow([](Bench& b) {
        b.put("a");
        b.put("b");
        b.selectAll();
        b.workbench.Show();
        b.later([&b] { (b.workbench.*b.flow.exit).Click.raise(); });
        b.click();
        CHECK_FALSE(b.workbench.Visible());
        CHECK(b.isConverted(b.out("a")));
        CHECK(b.isConverted(b.out("b")));
    });
}

TEST_CASE("Encoding runs inside a decoding's wait, and both come to their end")
{
    Bench b(decoding);
    b.put("a");
    putPcmWav(b.folder / "in/b.wav", music(frames));
    b.selectAll();
    b.workbench.outputdir.setCaption(b.folder / "out");
    b.workbench.File1.setPath(b.folder / "in");
    b.workbench.File1.setSelected(0, true);
    b.later([&b] {
        b.workbench.StartEncoding.Click.raise();
        CHECK(std::filesystem::exists(b.folder / "out/b.mp3"));
    });
    b.click();
    CHECK(b.isConverted(b.out("a")));
    CHECK(std::filesystem::exists(b.folder / "out/b.mp3"));
}

TEST_CASE("The bar stands at 0 after a batch: no progress comes behind a file's end")
{
    inEachFlow([](Bench& b) {
        for (const Text name : {"a", "b", "c", "d"})
            b.put(name);
        b.selectAll();
        float highest = 0;
        const auto watch = [&] { highest = std::max(highest, (b.workbench.*b.flow.bar).Value()); };
        if (b.flow.source == "wav")
            b.workbench.Mp3Encoder1->Progress.calls([&](std::int32_t position) {
                b.workbench.Mp3Encoder1_Progress(position);
                watch();
            });
        else
            b.workbench.Mp3Decoder->Progress.calls([&](std::int32_t position) {
                b.workbench.Mp3Decoder_Progress(position);
                watch();
            });
        b.click();
        for (int turns = 0; turns < 20; ++turns)
            QCoreApplication::processEvents();
        CHECK(b.isIdle());
        CHECK(highest > 0);
    });
}

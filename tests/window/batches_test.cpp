// SPDX-License-Identifier: GPL-3.0-or-later
// Encoding and decoding: twins, each tested the same way.
#include "platform/failure.h"
#include "support/answer_of_child.h"
#include "support/files.h"
#include "support/list_program.h"
#include "support/skip.h"
#include "support/temporary_folder.h"
#include "support/workshop.h"

#include <QWidget>

#include <doctest/doctest.h>
#include <sched.h>
#include <unistd.h>

#include <filesystem>

namespace
{

// One flow of the workbench: its controls, its variables and its engine.
struct Flow {
    Text engine, source, target; // name in the log, ends of the names
    Text go, end;                // calls at the start and at the end of a file, beside `Open`
    ctl::DirListBox& folders;
    ctl::FileListBox& files;
    ctl::CommandButton& start;
    ctl::CommandButton& exit;
    ctl::TextBox& panel;
    ctl::ProgressBar& bar;
    ctl::TextBox& workField;
    ctl::Label& outputFolder;
    std::int16_t& finished;
    Text& input;
    Text& position;
    std::int32_t& length;
    Event<std::int32_t>& progress;
    Event<>& done;
};

Flow encoding(Workshop& w)
{
    Mp3Encoder& b = w.workbench;
    return {"Mp3Encoder1",
            "wav",
            "mp3",
            "Start",
            "",
            b.Dir1,
            b.File1,
            b.StartEncoding,
            b.ExitEnc,
            b.txtEncNowEnc,
            b.ProgressBarEnc,
            b.filename2,
            b.outputdir,
            b.encodeFinished,
            b.encodeInputPath,
            b.encodePosition,
            w.encoder().length,
            b.Mp3Encoder1->Progress,
            b.Mp3Encoder1->Done};
}

Flow decoding(Workshop& w)
{
    Mp3Encoder& b = w.workbench;
    return {"Mp3Decoder",
            "mp3",
            "wav",
            "Play",
            "Close",
            b.Dir2,
            b.File2,
            b.Command3,
            b.Command1,
            b.txtEncNowDec,
            b.ProgressBarDec,
            b.filename22,
            b.outputdir2,
            b.decodeFinished,
            b.decodeInputPath,
            b.decodePosition,
            w.decoder().decodeLength,
            b.Mp3Decoder->Progress,
            b.Mp3Decoder->Done};
}

struct Bench : Workshop {
    TemporaryFolder folder;
    Flow flow;

    explicit Bench(Flow (*which)(Workshop&)) : flow(which(*this)) { flow.outputFolder.setCaption("/out"); }

    // Files of these names without their ends, all of them selected.
    void select(const std::vector<Text>& names)
    {
        put(names);
        for (std::int32_t row = 0; row < flow.files.ListCount(); ++row)
            flow.files.setSelected(row, true);
    }
    void put(const std::vector<Text>& names)
    {
        for (const auto& name : names)
            putFile(folder / (name + "." + flow.source), "");
        flow.files.setPath(folder.path());
    }

    // The next turns of the pump.
    void then(std::function<void()> step) { platform.scriptedPump.steps.push_back(std::move(step)); }
    void thenDone(int count = 1)
    {
        for (; count > 0; --count)
            then([this] { flow.done.raise(); });
    }

    void click() { flow.start.Click.raise(); }

    // What the engine is asked for one file, to the first turn of the wait.
    Text begun(const Text& name)
    {
        return flow.engine + ".Open(" + folder / (name + "." + flow.source) + ", " +
               flow.outputFolder.Caption() + "/" + name + "." + flow.target + ")\n" + flow.engine + "." +
               flow.go + "\nPump.turn\n";
    }
    Text ended() { return flow.end.empty() ? Text() : flow.engine + "." + flow.end + "\n"; }
    Text wholeFile(const Text& name) { return begun(name) + ended(); }
};

// The folder is the root of the file system to the rest of this process, where the system permits it.
bool becomesRoot(const Text& folder)
{
    return chroot(folder.c_str()) == 0 || (unshare(CLONE_NEWUSER) == 0 && chroot(folder.c_str()) == 0);
}

template <typename Test>
void inEachFlow(Test&& test)
{
    for (const auto which : {encoding, decoding}) {
        Bench bench(which);
        CAPTURE(bench.flow.engine);
        test(bench);
    }
}

}

TEST_CASE("With no file selected, or none there, a click does nothing and says nothing")
{
    inEachFlow([](Bench& b) {
        b.flow.files.setPath(b.folder.path());
        b.click();
        b.put({"a", "b"});
        b.click();
        CHECK(b.calls().empty());
        CHECK(b.platform.boxes.shown.empty());
        CHECK(b.flow.panel.Text().empty());
    });
}

TEST_CASE("The selected files are converted one after the other, each waited for")
{
    inEachFlow([](Bench& b) {
        b.select({"a", "b", "c"});
        b.flow.files.setSelected(1, false);
        b.thenDone(2);
        b.click();
        CHECK(b.calls() == b.wholeFile("a") + b.wholeFile("c"));
        CHECK(b.platform.boxes.shown.empty());
        CHECK(b.flow.files.Selected(0));
        CHECK_FALSE(b.flow.files.Selected(1));
        CHECK(b.flow.files.Selected(2));
    });
}

TEST_CASE("A file is waited for as long as its engine does not end it")
{
    inEachFlow([](Bench& b) {
        b.select({"a"});
        for (int turn = 0; turn < 50; ++turn)
            b.then([&b] { b.flow.progress.raise(1); });
        CHECK(waitsForEver([&] { b.click(); }));
        CHECK(b.flow.finished == 0);
        CHECK(b.flow.panel.Text() == "a." + b.flow.target);
    });
}

TEST_CASE("Only the value 1 ends the wait, and a new file begins at 0")
{
    inEachFlow([](Bench& b) {
        b.select({"a"});
        b.flow.finished = 1;
        b.then([&b] {
            CHECK(b.flow.finished == 0);
            b.flow.finished = 2;
        });
        b.then({});
        b.thenDone();
        b.click();
        CHECK(b.platform.log.count("Pump.turn") == 3);
        CHECK(b.flow.finished == 1);
    });
}

TEST_CASE("The answer to Open is discarded: a refused file is started and waited for like any other")
{
    Bench b(decoding);
    b.select({"a"});
    b.decoder().openResults = {1};
    b.thenDone();
    b.click();
    CHECK(b.calls() == b.wholeFile("a"));
}

TEST_CASE("Of the selection counts what it is when a row's turn comes")
{
    inEachFlow([](Bench& b) {
        b.select({"a", "b", "c", "d"});
        b.flow.files.setSelected(0, false);
        b.flow.files.setSelected(2, false);
        b.then([&b] {
            b.flow.files.setSelected(0, true); // its turn is over
            b.flow.files.setSelected(2, true);
            b.flow.files.setSelected(3, false);
            b.flow.done.raise();
        });
        b.thenDone();
        b.click();
        CHECK(b.calls() == b.wholeFile("b") + b.wholeFile("c"));
    });
}

TEST_CASE("The rows are counted once: files that come during a run wait for the next click")
{
    inEachFlow([](Bench& b) {
        b.select({"a"});
        b.then([&b] {
            b.select({"b", "c"});
            b.flow.done.raise();
        });
        b.click();
        CHECK(b.calls() == b.wholeFile("a"));
    });
}

TEST_CASE("A list that shrinks during a run ends it quietly")
{
    inEachFlow([](Bench& b) {
        b.select({"a", "b", "c"});
        b.then([&b] {
            std::filesystem::remove(b.folder / ("c." + b.flow.source));
            std::filesystem::remove(b.folder / ("b." + b.flow.source));
            b.select({});
            b.flow.done.raise();
        });
        b.click();
        CHECK(b.calls() == b.wholeFile("a"));
    });
}

TEST_CASE("Another source folder in the middle of a run counts for the rows that come")
{
    inEachFlow([](Bench& b) {
        const TemporaryFolder other;
        putFile(other / ("x." + b.flow.source), "");
        putFile(other / ("y." + b.flow.source), "");
        b.select({"a", "b"});
        b.then([&] {
            b.flow.folders.setPath(other.path());
            b.flow.files.setSelected(1, true);
            b.flow.done.raise();
        });
        b.thenDone();
        b.click();
        CHECK(b.flow.input == other / ("y." + b.flow.source));
    });
}

TEST_CASE("Another output folder in the middle of a run counts from the next file on")
{
    inEachFlow([](Bench& b) {
        b.select({"a", "b"});
        const Text first = b.wholeFile("a");
        b.then([&b] {
            b.flow.outputFolder.setCaption("/elsewhere");
            b.flow.done.raise();
        });
        b.thenDone();
        b.click();
        CHECK(b.calls() == first + b.wholeFile("b"));
    });
}

TEST_CASE("The last three characters of the name are replaced, whatever they are")
{
    // The ends of the sources, and what stays of them.
    struct Row {
        Text what;
        Text name; // "*" for the source's three letters
        Text kept;
    };
    const Row rows[] = {
        {"an ordinary name", "a.*", "a."},
        {"several points", "a.b.*", "a.b."},
        {"the other flow's end in the middle", "a.mp3.wav.*", "a.mp3.wav."},
        {"blanks", " a b .*", " a b ."},
        {"letters outside ASCII", "caf\xC3\xA9.*", "caf\xC3\xA9."},
        {"bytes that are no text", "caf\xE9\xFF.*", "caf\xE9\xFF."},
        {"nothing but the end", ".*", "."},
    };
    inEachFlow([&](Bench& b) {
        for (const auto& row : rows) {
            CAPTURE(row.what);
            Text name = row.name;
            name.replace(name.find('*'), 1, b.flow.source);
            putFile(b.folder / name, "");
            b.flow.files.setPath(b.folder.path());
            REQUIRE(b.flow.files.ListCount() == 1);
            b.flow.files.setSelected(0, true);
            b.then([&] {
                CHECK(b.flow.panel.Text() == row.kept + b.flow.target);
                b.flow.done.raise();
            });
            b.click();
            CHECK(b.flow.input == b.folder / name);
            CHECK(b.flow.workField.Text() == row.kept + b.flow.target);
            CHECK(b.calls().find(", /out/" + row.kept + b.flow.target + ")") != Text::npos);
            std::filesystem::remove(b.folder / name);
        }
    });
}

TEST_CASE("A name in capitals is listed and still ends in small letters")
{
    inEachFlow([](Bench& b) {
        const Text capitals = b.flow.source == "wav" ? "SONG.WAV" : "SONG.MP3";
        putFile(b.folder / capitals, "");
        b.select({});
        b.thenDone();
        b.click();
        CHECK(b.flow.input == b.folder / capitals);
        CHECK(b.flow.workField.Text() == "SONG." + b.flow.target);
    });
}

TEST_CASE("Only files of the flow's own kind are offered, whatever they hold")
{
    inEachFlow([](Bench& b) {
        for (const Text name : {"a.wav", "b.mp3", "c.wave", "d.mp3x", "e", "wav", "mp3"})
            putFile(b.folder / name, "");
        std::filesystem::create_directory(b.folder / ("folder." + b.flow.source));
        b.flow.files.setPath(b.folder.path());
        REQUIRE(b.flow.files.ListCount() == 1);
        CHECK(b.flow.files.List(0) == (b.flow.source == "wav" ? "a.wav" : "b.mp3"));
    });
}

TEST_CASE("The output path takes a separator unless its folder ends in one")
{
    struct Row {
        Text folder, before; // what stands before the name
    };
    const Row rows[] = {
        {"/out", "/out/"}, {"/out/", "/out/"},   {"/", "/"},
        {"", "/"},         {"/out//", "/out//"}, {"relative", "relative/"},
    };
    inEachFlow([&](Bench& b) {
        b.select({"a"});
        for (const auto& row : rows) {
            CAPTURE(row.folder);
            b.flow.outputFolder.setCaption(row.folder);
            b.thenDone();
            b.click();
            CHECK(b.calls().find(", " + row.before + "a." + b.flow.target + ")") != Text::npos);
        }
    });
}

TEST_CASE("A file in the root of the file system takes no second separator")
{
    inEachFlow([](Bench& b) {
        putFile(b.folder / ("a." + b.flow.source), "");
        const Text answer = answerOfChild([&]() noexcept -> Text {
            if (!becomesRoot(b.folder.path()))
                return "no rights";
            b.flow.files.setPath("/");
            b.flow.files.setSelected(0, true);
            b.thenDone();
            b.click();
            return b.platform.log.all().front() + " " + b.flow.input;
        });
        if (answer == "no rights") {
            skipCase("this process may not change its root");
            return;
        }
        CHECK(answer == b.flow.engine + ".Open(/a." + b.flow.source + ", /out/a." + b.flow.target + ") /a." +
                            b.flow.source);
    });
}

TEST_CASE("A file's end empties the panel and the bar before the next one begins")
{
    inEachFlow([](Bench& b) {
        b.select({"a", "b"});
        b.flow.length = 1000;
        b.then([&b] {
            b.flow.progress.raise(250);
            CHECK(b.flow.bar.Value() == 25);
            b.flow.done.raise();
            CHECK(b.flow.panel.Text().empty());
            CHECK(b.flow.bar.Value() == 0);
            CHECK(b.flow.finished == 1);
        });
        b.then([&b] {
            CHECK(b.flow.panel.Text() == "b." + b.flow.target);
            CHECK(b.flow.bar.Value() == 0);
            b.flow.progress.raise(999);
            b.flow.done.raise();
        });
        b.click();
        CHECK(b.flow.panel.Text().empty());
        CHECK(b.flow.bar.Value() == 0);
        CHECK(b.flow.position == "999");
    });
}

TEST_CASE("A file's path, panel and flag stand before its engine hears of it")
{
    inEachFlow([](Bench& b) {
        b.select({"a"});
        b.flow.finished = 1;
        int opens = 0;
        b.platform.log.onCall = [&](const Text& call) {
            if (!call.starts_with(b.flow.engine + ".Open("))
                return;
            ++opens;
            CHECK(b.flow.finished == 0);
            CHECK(b.flow.input == b.folder / ("a." + b.flow.source));
            CHECK(b.flow.workField.Text() == "a." + b.flow.target);
            CHECK(b.flow.panel.Text() == "a." + b.flow.target);
        };
        b.thenDone();
        b.click();
        CHECK(opens == 1);
    });
}

TEST_CASE("A file's end empties the panel first, then the bar, and frees the run last")
{
    inEachFlow([](Bench& b) {
        b.flow.panel.setText("a." + b.flow.target);
        b.flow.bar.setValue(40);
        b.flow.finished = 0;
        int changes = 0;
        b.flow.panel.Change.calls([&] {
            ++changes;
            CHECK(b.flow.panel.Text().empty());
            CHECK(b.flow.bar.Value() == 40);
            CHECK(b.flow.finished == 0);
        });
        b.flow.done.raise();
        CHECK(changes == 1);
        CHECK(b.flow.bar.Value() == 0);
        CHECK(b.flow.finished == 1);
    });
}

TEST_CASE("The decoder closes its file with the face already clean and the flag not yet set")
{
    Bench b(decoding);
    b.select({"a"});
    int closes = 0;
    b.decoder().onCall = [&](const Text& call) {
        if (call != "Close")
            return;
        ++closes;
        CHECK(b.flow.panel.Text().empty());
        CHECK(b.flow.bar.Value() == 0);
        CHECK(b.flow.finished == 0);
    };
    b.thenDone();
    b.click();
    CHECK(closes == 1);
}

TEST_CASE("Progress is a share of the length, where there is one, and is kept in any case")
{
    struct Row {
        Text what;
        std::int32_t length, position;
        float bar; // it stood at 40
        Text kept;
    };
    const Row rows[] = {
        {"the start", 1000, 0, 0, "0"},
        {"the middle", 1000, 500, 50, "500"},
        {"the end", 1000, 1000, 100, "1000"},
        {"a third", 3, 1, 100.0F / 3, "1"},
        {"no length", 0, 500, 40, "500"},
        {"a length below 0", -1, 500, 40, "500"},
        {"past the end", 1000, 2000, 100, "2000"},
        {"before the start", 1000, -5, 0, "-5"},
        {"the greatest position", 21474836, 21474836, 100, "21474836"},
        {"a position too great, but no length", 0, 2147483647, 40, "2147483647"},
    };
    inEachFlow([&](Bench& b) {
        for (const auto& row : rows) {
            CAPTURE(row.what);
            b.flow.bar.setValue(40);
            b.flow.length = row.length;
            b.flow.progress.raise(row.position);
            CHECK(b.flow.bar.Value() == row.bar);
            CHECK(b.flow.position == row.kept);
        }
    });
}

TEST_CASE("A position whose hundredfold does not fit 32 bits is a failure that nobody handles")
{
    inEachFlow([](Bench& b) {
        b.flow.length = 2147483647;
        b.flow.position = "before";
        b.flow.bar.setValue(40);
        for (const std::int32_t position : {21474837, 2147483647, -21474837}) {
            CAPTURE(position);
            int number = 0;
            guarded([&](const Failure& failure) { number = failure.number; },
                    [&] { b.flow.progress.raise(position); });
            CHECK(number == 6);
            CHECK(b.flow.bar.Value() == 40);
            CHECK(b.flow.position == "before");
        }
        // In a wait it goes through the run.
        b.select({"a", "b"});
        b.then([&b] { b.flow.progress.raise(21474837); });
        CHECK_FALSE(succeeds([&] { b.click(); }));
        CHECK(b.calls() == b.begun("a"));
        CHECK(b.platform.boxes.shown.empty());
    });
}

TEST_CASE("An end without a run is harmless")
{
    inEachFlow([](Bench& b) {
        b.flow.done.raise();
        CHECK(b.calls() == b.ended());
        b.select({"a"});
        b.thenDone();
        b.click();
        CHECK(b.calls() == b.wholeFile("a"));
    });
}

TEST_CASE("Nothing is switched off during a run, and the selection stays after it")
{
    inEachFlow([](Bench& b) {
        b.select({"a"});
        b.then([&b] {
            CHECK(b.flow.start.Enabled());
            CHECK(b.flow.exit.Enabled());
            b.flow.done.raise();
        });
        b.click();
        CHECK(b.flow.files.Selected(0));
    });
}

TEST_CASE("A second click runs the batch inside the first one's wait, with the same flag and the same path")
{
    inEachFlow([](Bench& b) {
        b.select({"a", "b"});
        b.then([&b] {
            b.click();
            // The inner run is over; its last end has ended the outer one's file as well.
            CHECK(b.flow.finished == 1);
            CHECK(b.flow.input == b.folder / ("b." + b.flow.source));
        });
        b.thenDone(3);
        b.click();
        CHECK(b.calls() == b.begun("a") + b.wholeFile("a") + b.wholeFile("b") + b.wholeFile("b"));
        CHECK(b.platform.scriptedPump.steps.empty());
    });
}

TEST_CASE("A click with nothing selected inside a run does not disturb it")
{
    inEachFlow([](Bench& b) {
        b.select({"a"});
        b.then([&b] {
            b.flow.files.setSelected(0, false);
            b.click();
            CHECK(b.flow.finished == 0);
        });
        b.thenDone();
        b.click();
        CHECK(b.calls() == b.begun("a") + "Pump.turn\n" + b.ended());
    });
}

TEST_CASE("Of two flows inside each other the inner one must end first")
{
    for (const bool encodesFirst : {true, false}) {
        CAPTURE(encodesFirst);
        Bench b(encodesFirst ? encoding : decoding);
        Flow inner = (encodesFirst ? decoding : encoding)(b);
        b.select({"a"});
        putFile(b.folder / ("z." + inner.source), "");
        inner.files.setPath(b.folder.path());
        inner.files.setSelected(0, true);
        Text order;
        b.then([&] {
            inner.start.Click.raise();
            order += "inner ended ";
            CHECK(b.flow.finished == 1);
        });
        b.thenDone();
        b.then([&] {
            CHECK(inner.finished == 0); // the outer one's end did not end the inner one
            inner.done.raise();
        });
        b.click();
        order += "outer ended";
        CHECK(order == "inner ended outer ended");
    }
}

TEST_CASE("Exit and the window manager's close hide the workbench, and a run goes on behind them")
{
    inEachFlow([](Bench& b) {
        for (const bool byButton : {true, false}) {
            CAPTURE(byButton);
            b.workbench.Show();
            b.select({"a", "b"});
            b.calls();
            b.then([&] {
                if (byButton)
                    b.flow.exit.Click.raise();
                else
                    b.workbench.page()->window()->close();
                CHECK_FALSE(b.workbench.Visible());
                b.flow.done.raise();
            });
            b.thenDone();
            b.click();
            CHECK(b.calls() == b.wholeFile("a") + b.wholeFile("b"));
            CHECK_FALSE(b.workbench.Visible());
            CHECK(b.platform.ends == 0);
        }
    });
}

TEST_CASE("An Apply during a run counts at once: the folder from the next file on")
{
    for (const auto which : {encoding, decoding}) {
        Bench b(which);
        CAPTURE(b.flow.engine);
        const TemporaryFolder other;
        b.select({"a", "b"});
        b.then([&] {
            (which == encoding ? b.settings.Dir1 : b.settings.Dir2).setPath(other.path());
            b.settings.SetEncBitr1.setValue(true);
            (which == encoding ? b.settings.SetEncApp : b.settings.SetDecApp).Click.raise();
            b.flow.done.raise();
        });
        b.thenDone();
        b.click();
        const Text calls = b.calls();
        CHECK(calls.find("/out/a." + b.flow.target) != Text::npos);
        CHECK(calls.find(other / ("b." + b.flow.target)) != Text::npos);
        CHECK((calls.find("Mp3Encoder1.Bitrate = 320000") != Text::npos) == (which == encoding));
    }
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/player.h"

#include <doctest/doctest.h>

namespace
{

const Text song = "/m/a.mp3";
const Text wave = "/m/b.wav";

const Text prepared = "OpenSaveDialog1.Flags = 4112\n"
                      "OpenSaveDialog1.CancelError = True\n"
                      "OpenSaveDialog1.InitialName = \n"
                      "OpenSaveDialog1.DialogTitle = Select a file to open\n"
                      "OpenSaveDialog1.Filter = Wav Files|*.wav|Mp3 Files|*.mp3\n"
                      "OpenSaveDialog1.ShowOpen\n";

void open(Player& p) { p.platform.mainMenu->choose(2); }

void setOldLabels(StartUp& window)
{
    for (auto* label : {&window.stitle, &window.sartist, &window.salbum, &window.sgenre, &window.slength,
                        &window.sbitrate, &window.sfrequency})
        label->setCaption("old");
}

Text labelsOf(const StartUp& window)
{
    Text text;
    for (const auto* label : {&window.stitle, &window.sartist, &window.salbum, &window.sgenre,
                              &window.slength, &window.sbitrate, &window.sfrequency})
        text += label->Caption() + "|";
    return text;
}

}

TEST_CASE("Open takes an MP3 file without playing it")
{
    Player p;
    setOldLabels(p.window);
    p.mp3().title = "A title";
    p.mp3().length = 61000;
    p.mp3().bitrate = 128000;
    p.mp3().frequency = 44100;
    p.choose(song, kind::mp3);
    open(p);
    CHECK(p.calls() == prepared + "Mp3Player.Stop\nMp3Player.Close\nMp3Player.Open(/m/a.mp3)\n"
                                  "MMControl1.Close\nStore.General Settings/FileType = 2\n");
    CHECK(p.window.mp3filename.Caption() == song);
    CHECK(labelsOf(p.window) == "A title||||1:01|128|44.1|");
}

TEST_CASE("Open takes a WAV file without playing it; of the labels only title and length are filled")
{
    Player p;
    setOldLabels(p.window);
    p.wav().length = 61000;
    p.choose(wave, kind::wav);
    open(p);
    CHECK(p.calls() == prepared + "Mp3Player.Close\nMMControl1.Close\nMMControl1.DeviceType = WaveAudio\n"
                                  "MMControl1.FileName = /m/b.wav\nMMControl1.Open\n"
                                  "Store.General Settings/FileType = 1\n");
    CHECK(p.window.mp3filename.Caption() == wave);
    CHECK(labelsOf(p.window) == "b.wav||||1:01|||");
}

TEST_CASE("Open runs with a file loaded, too")
{
    Player p;
    p.current(song, kind::mp3);
    p.choose("/m/c.mp3", kind::mp3);
    open(p);
    CHECK(p.platform.log.count("OpenSaveDialog1.ShowOpen") == 1);
    CHECK(p.window.mp3filename.Caption() == "/m/c.mp3");
}

TEST_CASE("Open makes cancelling a failure, for all later dialogs")
{
    Player p;
    p.dialog().cancelError = false;
    open(p);
    CHECK(p.dialog().cancelError);
    p.calls();
    p.window.Image1_Click();
    CHECK(p.calls().ends_with("OpenSaveDialog1.ShowOpen\n"));
    CHECK(p.dialog().cancelError);
}

TEST_CASE("Open stops and closes the MP3 engine before it takes the new name")
{
    Player p;
    p.current("/m/old.mp3", kind::mp3);
    Text names;
    p.platform.log.onCall = [&](const Text& call) {
        if (call.starts_with("Mp3Player."))
            names += call.substr(10) + " " + p.window.mp3filename.Caption() + "\n";
    };
    p.choose(song, kind::mp3);
    open(p);
    CHECK(names == "Stop /m/old.mp3\nClose /m/old.mp3\nOpen(/m/a.mp3) /m/a.mp3\n");
}

TEST_CASE("Open closes the engine of the other kind")
{
    Player p;
    p.choose(song, kind::mp3);
    open(p);
    CHECK(lines(p.platform.log.of("MMControl1")) == "MMControl1.Close\n");
    p.calls();
    p.choose(wave, kind::wav);
    open(p);
    CHECK(lines(p.platform.log.of("Mp3Player")) == "Mp3Player.Close\n");
}

TEST_CASE("Open empties the labels of a WAV file before it opens it")
{
    Player p;
    setOldLabels(p.window);
    Text atClose;
    p.platform.log.onCall = [&](const Text& call) {
        if (call == "Mp3Player.Close")
            atClose = labelsOf(p.window);
    };
    p.choose(wave, kind::wav);
    open(p);
    CHECK(atClose == "b.wav|||||||");
}

TEST_CASE("Open touches neither Pause nor its flag, and starts nothing")
{
    for (const auto fileKind : {kind::wav, kind::mp3})
        for (const bool enabled : {false, true})
            for (const std::int16_t flag : {0, 1}) {
                Player p;
                p.window.Image3.setEnabled(enabled);
                p.window.paused_flag = flag;
                p.choose(song, fileKind);
                open(p);
                CHECK(p.window.Image3.Enabled() == enabled);
                CHECK(p.window.paused_flag == flag);
                CHECK(p.platform.log.count("Mp3Player.Play") == 0);
                CHECK(p.platform.log.count("MMControl1.Play") == 0);
            }
}

TEST_CASE("Open without a pause lets Play start the new file from its beginning")
{
    struct Row {
        std::int16_t fileKind;
        Text calls;
    };
    for (const auto& c :
         {Row{kind::mp3, "Mp3Player.Stop\nMp3Player.Close\nMp3Player.Open(/m/a.mp3)\nMp3Player.Play\n"},
          Row{kind::wav, "MMControl1.Close\nMMControl1.FileName = /m/a.mp3\nMMControl1.Open\n"
                         "MMControl1.Play\n"}}) {
        CAPTURE(c.fileKind);
        Player p;
        p.current("/m/old.mp3", kind::mp3);
        p.choose(song, c.fileKind);
        open(p);
        p.calls();
        p.window.Image1_Click();
        CHECK(p.calls() == c.calls);
    }
}

TEST_CASE("Open in a pause lets Play resume into the new file's start")
{
    Player p;
    p.current("/m/old.mp3", kind::mp3);
    p.window.paused_flag = 1;
    p.choose(song, kind::mp3);
    open(p);
    p.calls();
    p.window.Image1_Click();
    CHECK(p.calls() == "Mp3Player.Play\n");
    CHECK(p.window.paused_flag == 0);
}

TEST_CASE("Open while an MP3 file plays stops it; cancelled, it leaves it playing and changes nothing")
{
    Player p;
    p.current("/m/old.mp3", kind::mp3);
    setOldLabels(p.window);
    open(p);
    CHECK(p.calls() == prepared);
    CHECK(p.window.mp3filename.Caption() == "/m/old.mp3");
    CHECK(labelsOf(p.window) == "old|old|old|old|old|old|old|");
    CHECK_FALSE(p.platform.store.values.contains({"General Settings", "FileType"}));
    CHECK(p.dialog().filterIndex == kind::mp3);
    CHECK(p.platform.boxes.shown.empty());
    p.choose(song, kind::mp3);
    open(p);
    CHECK(p.platform.log.count("Mp3Player.Stop") == 1);
}

TEST_CASE("Open begins on the stored kind, and keeps the dialog's own where none is stored")
{
    Player p;
    p.dialog().filterIndex = 7;
    open(p);
    CHECK(p.dialog().filterIndex == 7);
    p.store("General Settings", "FileType", "2");
    p.platform.store.reads.clear();
    open(p);
    CHECK(p.dialog().filterIndex == kind::mp3);
    CHECK(p.platform.store.reads ==
          std::vector<Text>{"General Settings/FileType", "General Settings/FileType"});
}

TEST_CASE("Open stores the kind that the user chose, last of all")
{
    Player p;
    p.store("General Settings", "FileType", "1");
    p.choose(song, kind::mp3);
    open(p);
    CHECK(p.stored("General Settings", "FileType") == "2");
    CHECK(p.platform.log.all().back() == "Store.General Settings/FileType = 2");
}

TEST_CASE("A failure before Open's dialog is reported, and the state stays")
{
    Player p;
    p.current("/m/old.mp3", kind::mp3);
    p.store("General Settings", "FileType", "mp3");
    p.choose(song, kind::mp3);
    open(p);
    CHECK(p.calls() == "MessageBox.Error 13\n");
    const auto& box = p.platform.boxes.shown.front();
    CHECK(box.text == "Type mismatch");
    CHECK(box.icon == MessageBoxes::Icon::critical);
    CHECK(box.buttons == MessageBoxes::Buttons::ok);
    CHECK(p.window.mp3filename.Caption() == "/m/old.mp3");
    CHECK(p.stored("General Settings", "FileType") == "mp3");

    p.store("General Settings", "FileType", "");
    p.dialog().prepareFails = 6;
    open(p);
    CHECK(p.calls() == "OpenSaveDialog1.Flags = 4112\nMessageBox.Error 6\n");
}

TEST_CASE("From Open's dialog on no failure is reported; each failing step is left out")
{
    for (const auto fileKind : {kind::wav, kind::mp3}) {
        Player whole;
        whole.choose(song, fileKind);
        open(whole);
        const auto calls = whole.platform.log.all();
        for (std::size_t failing = 6; failing < calls.size(); ++failing) {
            CAPTURE(calls[failing]);
            Player p;
            std::size_t made = 0;
            p.platform.log.onCall = [&](const Text&) {
                if (made++ == failing)
                    throw Failure(Trouble::deviceInputOutput);
            };
            p.choose(song, fileKind);
            open(p);
            CHECK(lines(p.platform.log.all()) == lines(calls));
            CHECK(p.window.mp3filename.Caption() == song);
            CHECK(p.platform.boxes.shown.empty());
        }
    }
}

TEST_CASE("A file that the engine refuses goes through all steps of Open")
{
    Player p;
    p.mp3().openResults = {3};
    p.choose(song, kind::mp3);
    open(p);
    CHECK(p.calls().ends_with("Mp3Player.Open(/m/a.mp3)\nMMControl1.Close\n"
                              "Store.General Settings/FileType = 2\n"));
    CHECK(p.window.mp3filename.Caption() == song);
}

TEST_CASE("Open during a list's run leaves the run's flag, so the run goes on with its next row")
{
    Player p;
    for (const auto* row : {"/m/1.mp3", "/m/2.mp3"})
        p.list().PlayListLB.AddItem(row);
    bool sounds = false;
    p.mp3().onPlay = [&] { sounds = true; };
    p.mp3().isPlaying = [&] { return static_cast<std::int16_t>(sounds); };
    p.choose("/m/other.mp3", kind::mp3);
    p.platform.scriptedPump.steps = {[&] {
                                         open(p);
                                         CHECK(p.list().labtemp1.Caption() == "0");
                                         sounds = false; // the engine was stopped
                                     },
                                     [&] { sounds = false; }};
    p.list().go_play_the_list(0);
    CHECK(p.platform.log.count("Mp3Player.Open(/m/other.mp3)") == 1);
    CHECK(p.platform.log.count("Mp3Player.Open(/m/2.mp3)") == 1);
    CHECK(p.window.mp3filename.Caption() == "/m/2.mp3");
}

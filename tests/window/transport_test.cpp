// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/player.h"

#include <doctest/doctest.h>

namespace
{

const Text song = "/m/a.mp3";
const Text wave = "/m/b.wav";

const Text prepared = "OpenSaveDialog1.Flags = 4112\n"
                      "OpenSaveDialog1.InitialName = \n"
                      "OpenSaveDialog1.DialogTitle = Select a file to open\n"
                      "OpenSaveDialog1.Filter = Wav Files|*.wav|Mp3 Files|*.mp3\n"
                      "OpenSaveDialog1.ShowOpen\n";

void giveTag(RecordingMp3Play& engine)
{
    engine.title = "Salt & <b>Pepper</b>";
    engine.artist = "R&B";
    engine.album = "An album";
    engine.genreIndex = 17;
    engine.length = 187000;
    engine.bitrate = 128000;
    engine.frequency = 44100;
}

// The information labels, one a line.
Text labelsOf(const StartUp& window)
{
    Text text;
    for (const auto* label : {&window.stitle, &window.sartist, &window.salbum, &window.sgenre,
                              &window.slength, &window.sbitrate, &window.sfrequency})
        text += label->Caption() + "\n";
    return text;
}

const Text tagShown = "Salt & <b>Pepper</b>\nR&B\nAn album\nGenre 17\n3:07\n128\n44.1\n";
const Text oldLabels = "old\nold\nold\nold\nold\nold\nold\n";

void setOldLabels(StartUp& window)
{
    for (auto* label : {&window.stitle, &window.sartist, &window.salbum, &window.sgenre, &window.slength,
                        &window.sbitrate, &window.sfrequency})
        label->setCaption("old");
}

// Every open fails, so often that no script is longer.
void refuseAlways(RecordingMp3Play& engine) { engine.openResults.assign(100, 1); }

struct Length {
    Text what;
    std::int32_t milliseconds;
    Text shown;
};

struct Kilo {
    std::int32_t number;
    Text shown;
};

}

TEST_CASE("Play without a file asks for one; an MP3 file is opened twice and played")
{
    Player p;
    giveTag(p.mp3());
    p.choose(song, kind::mp3);
    p.window.Image1_Click();
    CHECK(p.calls() == prepared + "Mp3Player.Stop\nMp3Player.Close\nMp3Player.Open(/m/a.mp3)\n"
                                  "Store.General Settings/FileType = 2\n"
                                  "Mp3Player.Stop\nMp3Player.Close\nMp3Player.Open(/m/a.mp3)\n"
                                  "Mp3Player.Play\n");
    CHECK(p.window.mp3filename.Caption() == song);
    CHECK(labelsOf(p.window) == tagShown);
    CHECK(p.window.Image3.Enabled());
    CHECK(p.window.paused_flag == 0);
}

TEST_CASE("Play without a file asks for one; a WAV file is opened twice and played")
{
    Player p;
    setOldLabels(p.window);
    p.wav().length = 61000;
    p.choose(wave, kind::wav);
    p.window.Image1_Click();
    CHECK(p.calls() == prepared + "MMControl1.Close\nMMControl1.DeviceType = WaveAudio\n"
                                  "MMControl1.FileName = /m/b.wav\nMMControl1.Open\n"
                                  "Store.General Settings/FileType = 1\n"
                                  "MMControl1.FileName = /m/b.wav\nMMControl1.Open\nMMControl1.Play\n");
    CHECK(p.window.mp3filename.Caption() == wave);
    CHECK(labelsOf(p.window) == "b.wav\nold\nold\nold\n1:01\nold\nold\n");
}

TEST_CASE("The first Play takes the name before it stops the engine")
{
    Player p;
    Text atStop;
    p.platform.log.onCall = [&](const Text& call) {
        if (call == "Mp3Player.Stop" && atStop.empty())
            atStop = p.window.mp3filename.Caption();
    };
    p.choose(song, kind::mp3);
    p.window.Image1_Click();
    CHECK(atStop == song);
}

TEST_CASE("The kind that the user chose decides the engine, not the file's own name")
{
    Player p;
    p.choose("/m/really.wav", kind::mp3);
    p.window.Image1_Click();
    CHECK(p.platform.log.count("Mp3Player.Open(/m/really.wav)") == 2);
    CHECK(p.platform.log.of("MMControl1").empty());
}

TEST_CASE("Any other kind than that of MP3 goes to the WAV engine")
{
    for (const std::int16_t other : {0, 3, -1}) {
        CAPTURE(other);
        Player p;
        p.dialog().filterIndex = other;
        p.choose(song, 0);
        p.window.Image1_Click();
        CHECK(p.platform.log.count("MMControl1.Play") == 1);
        CHECK(p.platform.log.of("Mp3Player").empty());
        CHECK(p.stored("General Settings", "FileType") == textOf(other));
    }
}

TEST_CASE("Pause becomes possible with the click on Play, even if the dialog is cancelled")
{
    Player p;
    CHECK_FALSE(p.window.Image3.Enabled());
    p.store("General Settings", "FileType", "1");
    bool asked = false;
    p.dialog().onShow = [&] {
        asked = true;
        CHECK(p.window.Image3.Enabled());
    };
    p.window.Image1_Click();
    CHECK(asked);
    CHECK(p.calls() == prepared);
    CHECK(p.window.Image3.Enabled());
    CHECK(p.window.mp3filename.Caption().empty());
    CHECK(p.stored("General Settings", "FileType") == "1");
    CHECK(p.platform.boxes.shown.empty());
}

TEST_CASE("A cancelled dialog leaves the stored kind, whatever its filter was turned to")
{
    Player p;
    p.store("General Settings", "FileType", "1");
    p.dialog().onShow = [&] { p.dialog().filterIndex = kind::mp3; };
    p.window.Image1_Click();
    p.platform.mainMenu->choose(2);
    CHECK(p.platform.log.count("OpenSaveDialog1.ShowOpen") == 2);
    CHECK(p.platform.log.of("Store").empty());
    CHECK(p.stored("General Settings", "FileType") == "1");
}

TEST_CASE("A dialog that fails for any other reason ends Play as silently")
{
    Player p;
    p.dialog().onShow = [] { throw Failure(Trouble::deviceInputOutput); };
    p.window.Image1_Click();
    CHECK(p.calls() == prepared);
}

TEST_CASE("Play does not touch what cancelling does; the menu's setting stays")
{
    Player p;
    p.dialog().cancelError = false;
    p.window.Image1_Click();
    CHECK_FALSE(p.dialog().cancelError);
    CHECK(p.platform.log.count("OpenSaveDialog1.CancelError = True") == 0);
}

TEST_CASE("Where cancelling is no failure, Play goes on with an empty name and asks again the next time")
{
    Player p;
    p.dialog().cancelError = false;
    p.dialog().filterIndex = kind::mp3;
    p.mp3().openResults = {1, 1};
    p.window.Image1_Click();
    CHECK(p.calls() == prepared + "Mp3Player.Stop\nMp3Player.Close\nMp3Player.Open()\n"
                                  "Store.General Settings/FileType = 2\n"
                                  "Mp3Player.Stop\nMp3Player.Close\nMp3Player.Open()\nMp3Player.Play\n");
    CHECK(p.window.mp3filename.Caption().empty());
    p.window.Image1_Click();
    CHECK(p.calls().starts_with(prepared));
}

TEST_CASE("The stored kind stands before the dialog opens")
{
    struct Row {
        Text stored;
        std::int16_t opensOn;
    };
    for (const auto& row :
         {Row{"", 7}, Row{"1", 1}, Row{"2", 2}, Row{" 2 ", 2}, Row{"1.5", 2}, Row{"0", 0}}) {
        CAPTURE(row.stored);
        Player p;
        p.dialog().filterIndex = 7;
        p.store("General Settings", "FileType", row.stored);
        std::int16_t seen = -1;
        p.platform.log.onCall = [&](const Text& call) {
            if (call == "OpenSaveDialog1.Flags = 4112")
                seen = p.dialog().filterIndex;
        };
        p.window.Image1_Click();
        CHECK(seen == row.opensOn);
    }
}

TEST_CASE("The stored kind is read twice where there is one, and once where there is none")
{
    Player p;
    p.platform.store.reads.clear();
    p.window.Image1_Click();
    CHECK(p.platform.store.reads == std::vector<Text>{"General Settings/FileType"});
    p.store("General Settings", "FileType", "2");
    p.platform.store.reads.clear();
    p.window.Image1_Click();
    CHECK(p.platform.store.reads ==
          std::vector<Text>{"General Settings/FileType", "General Settings/FileType"});
}

TEST_CASE("The kind is stored before the second open")
{
    for (const auto fileKind : {kind::wav, kind::mp3}) {
        Player p;
        p.choose(song, fileKind);
        p.window.Image1_Click();
        const auto& all = p.platform.log.all();
        const Text open = fileKind == kind::mp3 ? "Mp3Player.Open(/m/a.mp3)" : "MMControl1.Open";
        const auto first = std::find(all.begin(), all.end(), open);
        const auto second = std::find(first + 1, all.end(), open);
        const auto stored =
            std::find(all.begin(), all.end(), "Store.General Settings/FileType = " + textOf(fileKind));
        CHECK(first < stored);
        CHECK(stored < second);
        CHECK(std::find(second + 1, all.end(), open) == all.end());
    }
}

TEST_CASE("A failure before the dialog is reported, and Play ends there")
{
    struct Row {
        Text stored;
        Text title;
        Text text;
    };
    for (const auto& c : {Row{"wav", "Error 13", "Type mismatch"}, Row{"40000", "Error 6", "Overflow"},
                          Row{"-32769", "Error 6", "Overflow"}, Row{" ", "Error 13", "Type mismatch"}}) {
        CAPTURE(c.stored);
        Player p;
        p.store("General Settings", "FileType", c.stored);
        p.choose(song, kind::mp3);
        p.window.Image1_Click();
        CHECK(p.calls() == "MessageBox." + c.title + "\n");
        REQUIRE(p.platform.boxes.shown.size() == 1);
        const auto& box = p.platform.boxes.shown.front();
        CHECK(box.text == c.text);
        CHECK(box.title == c.title);
        CHECK(box.icon == MessageBoxes::Icon::critical);
        CHECK(box.buttons == MessageBoxes::Buttons::ok);
        CHECK(p.window.Image3.Enabled());
        CHECK(p.window.mp3filename.Caption().empty());
        CHECK(p.dialog().filterIndex == 0);
    }
}

TEST_CASE("A failure while the dialog is prepared is reported, and the dialog does not open")
{
    Player p;
    p.dialog().prepareFails = 380;
    p.window.Image1_Click();
    CHECK(p.calls() == "OpenSaveDialog1.Flags = 4112\nMessageBox.Error 380\n");
    CHECK(p.platform.boxes.shown.front().text == "Invalid property value");
}

TEST_CASE("From the dialog on, a step that fails is left out and the rest of Play goes on")
{
    for (const auto fileKind : {kind::wav, kind::mp3}) {
        Player whole;
        whole.choose(song, fileKind);
        whole.window.Image1_Click();
        const auto calls = whole.platform.log.all();
        for (std::size_t failing = 5; failing < calls.size(); ++failing) {
            CAPTURE(calls[failing]);
            Player p;
            std::size_t made = 0;
            p.platform.log.onCall = [&](const Text&) {
                if (made++ == failing)
                    throw Failure(Trouble::deviceInputOutput);
            };
            p.choose(song, fileKind);
            p.window.Image1_Click();
            CHECK(lines(p.platform.log.all()) == lines(calls));
            CHECK(p.platform.boxes.shown.empty());
        }
    }
}

TEST_CASE("From the dialog on, a label whose question fails leaves the other labels to be filled")
{
    struct Row {
        Text question;
        Text shown;
    };
    const Row rows[] = {
        {"Title", "old\nR&B\nAn album\nGenre 17\n3:07\n128\n44.1\n"},
        {"Artist", "Salt & <b>Pepper</b>\nold\nAn album\nGenre 17\n3:07\n128\n44.1\n"},
        {"Length", "Salt & <b>Pepper</b>\nR&B\nAn album\nGenre 17\n9:09\n128\n44.1\n"},
    };
    for (const auto& row : rows)
        for (const bool byMenu : {false, true}) {
            CAPTURE(row.question);
            CAPTURE(byMenu);
            Player p;
            giveTag(p.mp3());
            setOldLabels(p.window);
            p.window.total_min = "9";
            p.window.total_sec = "09";
            bool asked = false;
            p.mp3().onQuestion = [&](const Text& question) {
                if (question != row.question)
                    return;
                asked = true;
                throw Failure(Trouble::deviceInputOutput);
            };
            p.choose(song, kind::mp3);
            byMenu ? p.platform.mainMenu->choose(2) : p.window.Image1_Click();
            CHECK(asked);
            CHECK(labelsOf(p.window) == row.shown);
            CHECK(p.platform.boxes.shown.empty());
            CHECK(p.stored("General Settings", "FileType") == "2");
        }
}

TEST_CASE("Outside such a stretch a label whose question fails ends the handler there")
{
    Player p;
    p.current(song, kind::mp3);
    giveTag(p.mp3());
    setOldLabels(p.window);
    p.mp3().onQuestion = [](const Text& question) {
        if (question == "Artist")
            throw Failure(Trouble::deviceInputOutput);
    };
    CHECK_FALSE(succeeds([&] { p.window.Image1_Click(); }));
    CHECK(labelsOf(p.window) == "Salt & <b>Pepper</b>\nold\nold\nold\nold\nold\nold\n");
}

TEST_CASE("Play on a known MP3 file starts it from its beginning and shows its information")
{
    Player p;
    p.current(song, kind::mp3);
    giveTag(p.mp3());
    p.window.Image1_Click();
    CHECK(p.calls() == "Mp3Player.Stop\nMp3Player.Close\nMp3Player.Open(/m/a.mp3)\nMp3Player.Play\n");
    CHECK(labelsOf(p.window) == tagShown);
    CHECK(p.window.Image3.Enabled());
}

TEST_CASE("Play on a paused MP3 file continues it and refreshes the information")
{
    Player p;
    p.current(song, kind::mp3);
    p.window.paused_flag = 1;
    setOldLabels(p.window);
    giveTag(p.mp3());
    p.window.Image1_Click();
    CHECK(p.calls() == "Mp3Player.Play\n");
    CHECK(p.window.paused_flag == 0);
    CHECK(labelsOf(p.window) == tagShown);
}

TEST_CASE("Play on a known WAV file starts it from its beginning and leaves the labels standing")
{
    Player p;
    p.current(wave, kind::wav);
    setOldLabels(p.window);
    p.wav().length = 61000;
    p.window.Image1_Click();
    CHECK(p.calls() ==
          "MMControl1.Close\nMMControl1.FileName = /m/b.wav\nMMControl1.Open\nMMControl1.Play\n");
    CHECK(labelsOf(p.window) == oldLabels);
    CHECK(p.window.Image3.Enabled());
}

TEST_CASE("Play on a paused WAV file continues it and leaves")
{
    Player p;
    p.current(wave, kind::wav);
    p.window.paused_flag = 1;
    setOldLabels(p.window);
    p.window.Image1_Click();
    CHECK(p.calls() == "MMControl1.Play\n");
    CHECK(p.window.paused_flag == 0);
    CHECK(labelsOf(p.window) == oldLabels);
}

TEST_CASE("A known file asks neither the dialog nor the store")
{
    Player p;
    p.current(song, kind::mp3);
    p.store("General Settings", "FileType", "no number");
    p.platform.store.reads.clear();
    p.window.Image1_Click();
    CHECK(p.platform.log.of("OpenSaveDialog1").empty());
    CHECK(p.platform.log.of("Store").empty());
    CHECK(p.platform.store.reads.empty());
}

TEST_CASE("A known file of any other kind than MP3 goes to the WAV engine, whichever image is clicked")
{
    for (const std::int16_t other : {0, 1, 3, -1}) {
        CAPTURE(other);
        Player p;
        p.current(song, other);
        p.window.Image1_Click();
        CHECK(p.calls() ==
              "MMControl1.Close\nMMControl1.FileName = /m/a.mp3\nMMControl1.Open\nMMControl1.Play\n");
        p.window.Image2_Click();
        CHECK(p.calls() == "MMControl1.Close\n");
        p.window.playfunction1();
        CHECK(p.calls().ends_with("MMControl1.Open\nMMControl1.Play\n"));
    }
}

TEST_CASE("Play goes on only when the flag is 1, Pause goes on whenever it is not 0")
{
    Player p;
    p.current(song, kind::mp3);
    p.window.paused_flag = 2;
    p.window.Image1_Click();
    CHECK(p.calls().starts_with("Mp3Player.Stop\n"));
    CHECK(p.window.paused_flag == 2);
    p.window.Image3_Click();
    CHECK(p.calls() == "Mp3Player.Play\n");
    CHECK(p.window.paused_flag == 0);
}

TEST_CASE("A file that the engine refuses is played all the same, without a word")
{
    Player p;
    p.current(song, kind::mp3);
    refuseAlways(p.mp3());
    p.window.Image1_Click();
    CHECK(p.calls() == "Mp3Player.Stop\nMp3Player.Close\nMp3Player.Open(/m/a.mp3)\nMp3Player.Play\n");
    CHECK(p.platform.boxes.shown.empty());
    CHECK(p.window.slength.Caption() == "0:00");
    CHECK(p.window.sbitrate.Caption() == "0");
}

TEST_CASE("The length is shown in minutes and seconds, on either engine")
{
    const Length lengths[] = {
        {"nine seconds", 9000, "0:09"},
        {"exactly ten seconds", 10000, "0:10"},
        {"61 seconds", 61000, "1:01"},
        {"just under a minute", 59999, "0:59"},
        {"three minutes seven", 187999, "3:07"},
        {"over an hour", 3661000, "61:01"},
        {"nothing open", 0, "0:00"},
    };
    for (const auto& c : lengths) {
        CAPTURE(c.what);
        Player p;
        p.mp3().length = p.wav().length = c.milliseconds;
        p.current(song, kind::mp3);
        p.window.Image1_Click();
        CHECK(p.window.slength.Caption() == c.shown);
        CHECK(p.window.total_min + ":" + p.window.total_sec == c.shown);
        p.current("", kind::wav);
        p.window.slength.setCaption("");
        p.choose(wave, kind::wav);
        p.window.Image1_Click();
        CHECK(p.window.slength.Caption() == c.shown);
    }
}

TEST_CASE("Bit rate and sample rate are shown in thousands, with a fraction where there is one")
{
    const Kilo numbers[] = {{0, "0"},        {128000, "128"},  {128500, "128.5"},
                            {44100, "44.1"}, {22050, "22.05"}, {11025, "11.025"},
                            {999, "0.999"},  {320000, "320"},  {191834, "191.834"}};
    for (const auto& c : numbers) {
        CAPTURE(c.number);
        Player p;
        p.current(song, kind::mp3);
        p.mp3().bitrate = p.mp3().frequency = c.number;
        p.window.Image1_Click();
        CHECK(p.window.sbitrate.Caption() == c.shown);
        CHECK(p.window.sfrequency.Caption() == c.shown);
    }
}

TEST_CASE("A file without a genre shows the text that the engine has for none")
{
    Player p;
    p.current(song, kind::mp3);
    p.window.sgenre.setCaption("old");
    p.window.Image1_Click();
    CHECK(p.mp3().genreIndex == -1);
    CHECK(p.window.sgenre.Caption().empty());
}

TEST_CASE("Pause is a toggle")
{
    struct Row {
        Text what;
        std::int16_t fileKind;
        std::int16_t flag;
        Text call;
        std::int16_t flagAfter;
    };
    const Row rows[] = {
        {"MP3, not paused", kind::mp3, 0, "Mp3Player.Pause\n", 1},
        {"MP3, paused", kind::mp3, 1, "Mp3Player.Play\n", 0},
        {"WAV, not paused", kind::wav, 0, "MMControl1.Stop\n", 1},
        {"WAV, paused: no new open", kind::wav, 1, "MMControl1.Play\n", 0},
        {"neither, not paused", 0, 0, "MMControl1.Stop\n", 1},
        {"neither, paused", 0, 1, "MMControl1.Play\n", 0},
        {"a third filter", 3, 0, "MMControl1.Stop\n", 1},
    };
    for (const auto& c : rows) {
        CAPTURE(c.what);
        Player p;
        p.current(song, c.fileKind);
        p.window.paused_flag = c.flag;
        setOldLabels(p.window);
        p.window.Image3_Click();
        CHECK(p.calls() == c.call);
        CHECK(p.window.paused_flag == c.flagAfter);
        CHECK(labelsOf(p.window) == oldLabels);
    }
}

TEST_CASE("Pause with no file still marks the player as paused, and the next Play asks for a file")
{
    Player p;
    p.window.Image3_Click();
    CHECK(p.window.paused_flag == 1);
    p.calls();
    p.choose(song, kind::mp3);
    p.window.Image1_Click();
    CHECK(p.calls().ends_with("Mp3Player.Open(/m/a.mp3)\nMp3Player.Play\n"));
    CHECK(p.window.paused_flag == 1);
    p.window.Image1_Click();
    CHECK(p.calls() == "Mp3Player.Play\n");
}

TEST_CASE("Stop on an MP3 file leaves it open at its start")
{
    Player p;
    p.current(song, kind::mp3);
    p.window.Image3.setEnabled(true);
    p.window.pbar.setValue(40);
    p.window.Timer.setEnabled(false);
    p.window.Image2_Click();
    CHECK(p.calls() == "Mp3Player.Stop\nMp3Player.Close\nMp3Player.Open(/m/a.mp3)\n");
    CHECK(p.mp3().isOpen);
    CHECK(p.window.pbar.Value() == 0);
    CHECK(p.window.Timer.Enabled());
    CHECK_FALSE(p.window.Image3.Enabled());
    CHECK(p.window.paused_flag == 0);
    CHECK(p.list().labtemp1.Caption() == "1");
    CHECK(p.window.mp3filename.Caption() == song);
}

TEST_CASE("Stop in a pause pauses once more before it stops")
{
    Player p;
    p.current(song, kind::mp3);
    p.window.paused_flag = 1;
    p.window.Image2_Click();
    CHECK(p.calls() == "Mp3Player.Pause\nMp3Player.Stop\nMp3Player.Close\nMp3Player.Open(/m/a.mp3)\n");
    CHECK(p.window.paused_flag == 0);
}

TEST_CASE("Stop on a WAV file closes it and leaves bar and clock alone; Play opens it again")
{
    Player p;
    p.current(wave, kind::wav);
    p.window.Image3.setEnabled(true);
    p.window.paused_flag = 1;
    p.window.pbar.setValue(40);
    p.window.Timer.setEnabled(false);
    p.window.Image2_Click();
    CHECK(p.calls() == "MMControl1.Close\n");
    CHECK(p.window.pbar.Value() == 40);
    CHECK_FALSE(p.window.Timer.Enabled());
    CHECK_FALSE(p.window.Image3.Enabled());
    CHECK(p.window.paused_flag == 0);
    CHECK(p.list().labtemp1.Caption() == "1");
    p.window.Image1_Click();
    CHECK(p.calls() ==
          "MMControl1.Close\nMMControl1.FileName = /m/b.wav\nMMControl1.Open\nMMControl1.Play\n");
}

TEST_CASE("Stop raises the list's flag before anything else")
{
    Player p;
    p.current(song, kind::mp3);
    Text atStop;
    p.platform.log.onCall = [&](const Text& call) {
        if (call == "Mp3Player.Stop")
            atStop = p.list().labtemp1.Caption();
    };
    p.window.Image2_Click();
    CHECK(atStop == "1");
    CHECK(p.list().labtemp1.Caption() == "1");
}

TEST_CASE("Stop sets the bar and the clock between closing and opening")
{
    Player p;
    p.current(song, kind::mp3);
    p.window.pbar.setValue(40);
    p.window.Timer.setEnabled(false);
    Text seen;
    p.platform.log.onCall = [&](const Text& call) {
        if (call == "Mp3Player.Close" || call == "Mp3Player.Open(/m/a.mp3)")
            seen += textOf(p.window.pbar.Value()) + (p.window.Timer.Enabled() ? " on\n" : " off\n");
    };
    p.window.Image2_Click();
    CHECK(seen == "40 off\n0 on\n");
}

TEST_CASE("Stop's last step comes only after the file is open again")
{
    Player p;
    p.current(song, kind::mp3);
    p.window.Image3.setEnabled(true);
    p.window.paused_flag = 1;
    p.mp3().openResults = {1, -5};
    int turns = 0;
    const auto stillStopping = [&] {
        ++turns;
        CHECK(p.window.Image3.Enabled());
        CHECK(p.window.paused_flag == 1);
    };
    p.platform.scriptedPump.steps = {stillStopping, stillStopping};
    p.window.Image2_Click();
    CHECK(turns == 2);
    CHECK_FALSE(p.window.Image3.Enabled());
    CHECK(p.window.paused_flag == 0);
}

TEST_CASE("The open that is tried again and again takes the current name anew at each try")
{
    for (const bool stops : {true, false}) {
        CAPTURE(stops);
        Player p;
        p.current(song, kind::mp3);
        p.mp3().openResults = {1, 1};
        p.platform.scriptedPump.steps = {[&] { p.window.mp3filename.setCaption("/m/c.mp3"); },
                                         [&] { p.window.mp3filename.setCaption("/m/d.mp3"); }};
        stops ? p.window.Image2_Click() : p.window.playfunction1();
        CHECK(p.calls().find("Mp3Player.Open(/m/a.mp3)\nPump.turn\nMp3Player.Open(/m/c.mp3)\nPump.turn\n"
                             "Mp3Player.Open(/m/d.mp3)\n") != Text::npos);
    }
}

TEST_CASE("Stop with no file, when the kind is that of MP3, waits without an end and stays responsive")
{
    Player p;
    p.dialog().filterIndex = kind::mp3;
    refuseAlways(p.mp3());
    int turns = 0;
    p.platform.scriptedPump.steps.assign(5, [&] { ++turns; });
    CHECK_THROWS_AS(p.window.Image2_Click(), StillWaiting);
    CHECK(turns == 5);
    CHECK(p.platform.log.count("Mp3Player.Open()") == 6);
}

TEST_CASE("Stop after the first dialog was cancelled on the MP3 filter waits without an end, too")
{
    Player p;
    p.store("General Settings", "FileType", "2");
    refuseAlways(p.mp3());
    p.window.Image1_Click();
    p.calls();
    p.platform.scriptedPump.steps.assign(2, nullptr);
    CHECK_THROWS_AS(p.window.Image2_Click(), StillWaiting);
    CHECK(p.calls() == "Mp3Player.Stop\nMp3Player.Close\nMp3Player.Open()\nPump.turn\nMp3Player.Open()\n"
                       "Pump.turn\nMp3Player.Open()\nPump.turn\n");
}

TEST_CASE("A list's row that cannot be opened waits without an end, and the clock goes on")
{
    Player p;
    p.current(song, kind::mp3);
    refuseAlways(p.mp3());
    p.platform.scriptedPump.steps.assign(3, [&] { p.window.Timer_Timer(); });
    CHECK_THROWS_AS(p.window.playfunction1(), StillWaiting);
    CHECK(p.platform.log.count("Mp3Player.Play") == 0);
    CHECK(p.window.Label1.Caption() == "0:00");
}

TEST_CASE("A click inside such a wait runs at once")
{
    Player p;
    p.current(song, kind::mp3);
    p.mp3().openResults = {1};
    p.platform.scriptedPump.steps = {[&] { p.window.Image1_Click(); }};
    p.window.playfunction1();
    CHECK(p.calls() == "MMControl1.Close\nMp3Player.Stop\nMp3Player.Close\n"
                       "Mp3Player.Stop\nMp3Player.Close\nMp3Player.Open(/m/a.mp3)\nPump.turn\n"
                       "Mp3Player.Stop\nMp3Player.Close\nMp3Player.Open(/m/a.mp3)\nMp3Player.Play\n"
                       "Mp3Player.Open(/m/a.mp3)\nMp3Player.Play\n");
}

TEST_CASE("A list's MP3 row closes both engines, is opened and played")
{
    Player p;
    p.current(song, kind::mp3);
    giveTag(p.mp3());
    p.window.playfunction1();
    CHECK(p.calls() == "MMControl1.Close\nMp3Player.Stop\nMp3Player.Close\n"
                       "Mp3Player.Stop\nMp3Player.Close\nMp3Player.Open(/m/a.mp3)\nMp3Player.Play\n");
    CHECK(p.window.Image3.Enabled());
    CHECK(labelsOf(p.window) == tagShown);
}

TEST_CASE("A list's WAV row closes both engines, is opened and played, and the labels stand")
{
    Player p;
    p.current(wave, kind::wav);
    setOldLabels(p.window);
    p.window.playfunction1();
    CHECK(p.calls() == "MMControl1.Close\nMp3Player.Stop\nMp3Player.Close\n"
                       "MMControl1.Close\nMMControl1.FileName = /m/b.wav\nMMControl1.Open\n"
                       "MMControl1.Play\n");
    CHECK(p.window.Image3.Enabled());
    CHECK(labelsOf(p.window) == oldLabels);
}

TEST_CASE("A list that starts in a pause finds both engines closed: nothing starts and the pause is over")
{
    Player p;
    p.current(song, kind::mp3);
    p.window.paused_flag = 1;
    giveTag(p.mp3());
    p.window.playfunction1();
    CHECK(p.calls() == "MMControl1.Close\nMp3Player.Stop\nMp3Player.Close\nMp3Player.Play\n");
    CHECK_FALSE(p.mp3().isOpen);
    CHECK(p.window.paused_flag == 0);
    CHECK(labelsOf(p.window) == tagShown);

    p.current(wave, kind::wav);
    p.window.paused_flag = 1;
    setOldLabels(p.window);
    p.window.playfunction1();
    CHECK(p.calls() == "MMControl1.Close\nMp3Player.Stop\nMp3Player.Close\nMMControl1.Play\n");
    CHECK(p.window.paused_flag == 0);
    CHECK(labelsOf(p.window) == oldLabels);
}

namespace
{

// One of the four ways to start a file, and what it did.
struct Start {
    bool closesTheOther = false;
    int opens = 0;
    bool retries = false;
    bool plays = false;
    bool informs = false;
    bool enablesPause = false;
    bool meetsThePause = false;
};

Start startOf(std::int16_t fileKind, const Text& before, const std::function<void(StartUp&)>& act)
{
    const auto run = [&](Player& p) {
        p.current(before, fileKind);
        p.choose(song, fileKind);
        setOldLabels(p.window);
        act(p.window);
    };
    const bool mp3 = fileKind == kind::mp3;

    Player p;
    run(p);
    Start start;
    start.closesTheOther = p.platform.log.count(mp3 ? "MMControl1.Close" : "Mp3Player.Close") > 0;
    start.opens =
        static_cast<int>(p.platform.log.count(mp3 ? "Mp3Player.Open(/m/a.mp3)" : "MMControl1.Open"));
    start.plays = p.platform.log.count(mp3 ? "Mp3Player.Play" : "MMControl1.Play") > 0;
    start.informs = labelsOf(p.window) != oldLabels;
    start.enablesPause = p.window.Image3.Enabled();

    Player refused;
    refuseAlways(refused.mp3());
    try {
        run(refused);
    } catch (const StillWaiting&) {
        start.retries = true;
    }

    Player paused;
    paused.window.paused_flag = 1;
    run(paused);
    start.meetsThePause = paused.window.paused_flag == 0;
    return start;
}

}

TEST_CASE("The four starts of a file differ as they must")
{
    struct Column {
        Text what;
        Text before;
        std::function<void(StartUp&)> act;
        Start mp3;
        Start wav;
    };
    const auto openByMenu = [](StartUp& window) {
        std::int32_t item = 2;
        window.cP_Click(item);
    };
    // closes the other engine, opens, retries, plays, shows information, enables Pause, meets the pause
    const Column columns[] = {
        {"Play, no file",
         "",
         [](StartUp& window) { window.Image1_Click(); },
         {false, 2, false, true, true, true, false},
         {false, 2, false, true, true, true, false}},
        {"Play, file known",
         song,
         [](StartUp& window) { window.Image1_Click(); },
         {false, 1, false, true, true, true, true},
         {false, 1, false, true, false, true, true}},
        {"a list's row",
         song,
         [](StartUp& window) { window.playfunction1(); },
         {true, 1, true, true, true, true, true},
         {true, 1, false, true, false, true, true}},
        {"Open in the menu",
         "/m/before.mp3",
         openByMenu,
         {true, 1, false, false, true, false, false},
         {true, 1, false, false, true, false, false}},
    };
    for (const auto& c : columns) {
        for (const auto fileKind : {kind::mp3, kind::wav}) {
            CAPTURE(c.what);
            CAPTURE(fileKind);
            const Start start = startOf(fileKind, c.before, c.act);
            const Start& expected = fileKind == kind::mp3 ? c.mp3 : c.wav;
            CHECK_MESSAGE(start.closesTheOther == expected.closesTheOther, "closes the other engine");
            CHECK_MESSAGE(start.opens == expected.opens, "opens");
            CHECK_MESSAGE(start.retries == expected.retries, "retries");
            CHECK_MESSAGE(start.plays == expected.plays, "plays");
            CHECK_MESSAGE(start.informs == expected.informs, "shows information");
            CHECK_MESSAGE(start.enablesPause == expected.enablesPause, "enables Pause");
            CHECK_MESSAGE(start.meetsThePause == expected.meetsThePause, "honours the pause");
        }
    }
}

TEST_CASE("From state to state as the user clicks")
{
    Player p;
    p.choose(song, kind::mp3);
    p.window.Image1_Click();
    p.calls();
    p.window.Image3_Click();
    CHECK(p.calls() == "Mp3Player.Pause\n");
    p.window.Image3_Click();
    CHECK(p.calls() == "Mp3Player.Play\n");
    p.window.Image3_Click();
    p.window.Image1_Click();
    CHECK(p.calls() == "Mp3Player.Pause\nMp3Player.Play\n");
    p.window.Image2_Click();
    CHECK(p.calls() == "Mp3Player.Stop\nMp3Player.Close\nMp3Player.Open(/m/a.mp3)\n");
    p.window.Image1_Click();
    CHECK(p.calls() == "Mp3Player.Stop\nMp3Player.Close\nMp3Player.Open(/m/a.mp3)\nMp3Player.Play\n");
    p.window.Image1_Click();
    CHECK(p.calls() == "Mp3Player.Stop\nMp3Player.Close\nMp3Player.Open(/m/a.mp3)\nMp3Player.Play\n");
}

TEST_CASE("The images raise their handlers")
{
    Player p;
    p.current(song, kind::mp3);
    p.window.Image1.Click.raise();
    CHECK(p.calls().ends_with("Mp3Player.Play\n"));
    p.window.Image3.Click.raise();
    CHECK(p.calls() == "Mp3Player.Pause\n");
    p.window.Image2.Click.raise();
    CHECK(p.calls().starts_with("Mp3Player.Pause\nMp3Player.Stop\n"));
}

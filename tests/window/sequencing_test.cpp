// SPDX-License-Identifier: GPL-3.0-or-later
#include "player/file_kind.h"
#include "support/failures.h"
#include "support/list_hand.h"
#include "support/list_program.h"
#include "support/simulated_sound.h"

#include <doctest/doctest.h>
#include <span>

namespace
{

using Lines = std::vector<Text>;
using Step = std::function<void()>;

struct Player : ListProgram {
    explicit Player(const Lines& rows) : sound(platform)
    {
        fill(rows);
        platform.log.clear();
    }

    void select(std::int32_t row) { list.PlayListLB.setListIndex(row); }
    void choose(std::int32_t item) { platform.listMenu->choose(item); }

    // What happens while the program waits, a step a turn.
    void meanwhile(std::initializer_list<Step> steps) { platform.scriptedPump.steps = steps; }

    void current(const Text& path, std::int16_t kind)
    {
        player.mp3filename.setCaption(path);
        player.OpenSaveDialog1->setFilterIndex(kind);
    }
    Text currentFile() const { return player.mp3filename.Caption(); }
    std::int16_t currentKind() const { return player.OpenSaveDialog1->FilterIndex(); }
    Text flag() const { return list.labtemp1.Caption(); }
    std::int32_t selected() const { return list.PlayListLB.ListIndex(); }

    // The calls of both engines.
    Lines engineCalls() const
    {
        Lines calls;
        for (const auto& call : platform.log.all())
            if (call.starts_with("Mp3Player.") || call.starts_with("MMControl1."))
                calls.push_back(call);
        return calls;
    }

    // How often the stop operation ran: it alone opens a file without playing it.
    std::ptrdiff_t stops() const { return platform.log.count("Mp3Player.Open(/now.mp3)"); }

    SimulatedSound sound;
};

// All tracks end one after the other, as often as the program waits.
void letTracksEnd(Player& start)
{
    start.platform.scriptedPump.steps = {[&start] {
        start.sound.trackEnds();
        letTracksEnd(start);
    }};
}

}

TEST_CASE("Every command stops and starts by this table")
{
    struct Way {
        Text name;
        void (*give)(Player&);
    };
    const Way play[] = {{"Play", [](Player& start) { start.list.Playimg1.Click.raise(); }},
                        {"menu Play From Selected", [](Player& start) { start.choose(18); }}};
    const Way fromFirst[] = {{"menu Start", [](Player& start) { start.choose(11); }}};
    const Way next[] = {{"Next", [](Player& start) { start.list.Nextimg1.Click.raise(); }},
                        {"menu Next", [](Player& start) { start.choose(15); }}};
    const Way previous[] = {{"Previous", [](Player& start) { start.list.Previmg1.Click.raise(); }}};
    const Way menuPrevious[] = {{"menu Previous", [](Player& start) { start.choose(14); }}};
    const Way stop[] = {{"Stop", [](Player& start) { start.list.Stopimg1.Click.raise(); }},
                        {"menu Stop", [](Player& start) { start.choose(12); }}};

    constexpr int none = -1;
    struct Case {
        std::span<const Way> ways;
        int selected, playIndex;
        int stops;
        int starts;
    };
    const Case cases[] = {
        {play, none, 1, 1, 0},      {play, 0, 1, 1, 0},         {play, 2, 1, 1, 2},
        {fromFirst, none, 1, 0, 0}, {fromFirst, 2, 1, 0, 0},    {next, none, 0, 1, 1},
        {next, 2, 0, 1, 1},         {next, 0, 1, 1, 2},         {next, 0, 2, 1, none},
        {next, 0, 7, 1, none},      {previous, 2, 2, 1, 1},     {previous, 2, 1, 1, 0},
        {previous, 2, 0, 1, none},  {menuPrevious, 2, 2, 2, 1}, {menuPrevious, 2, 0, 2, none},
        {stop, 1, 1, 1, none},
    };
    for (const auto& c : cases)
        for (const auto& way : c.ways) {
            CAPTURE(way.name);
            CAPTURE(c.selected);
            CAPTURE(c.playIndex);
            Player start({"/0.mp3", "/1.mp3", "/2.mp3"});
            start.current("/now.mp3", kind::mp3);
            start.select(c.selected);
            start.list.PlayIndex = c.playIndex;
            const bool starts = c.starts != none;
            CHECK(waitsForEver([&] { way.give(start); }) == starts);
            CHECK(start.stops() == c.stops);
            CHECK(start.currentFile() == (starts ? "/" + std::to_string(c.starts) + ".mp3" : "/now.mp3"));
            CHECK(start.list.PlayIndex == (starts ? c.starts : c.playIndex));
            CHECK(start.selected() == (starts ? c.starts : c.selected));
            CHECK(start.flag() == (starts ? "0" : "1"));
            CHECK(start.sound.mp3Plays == starts);
        }
}

TEST_CASE("On an empty list every start is over at once")
{
    for (const std::int32_t item : {11, 14, 15, 17, 18}) {
        CAPTURE(item);
        Player start({});
        start.choose(item);
        CHECK(start.currentFile() == "");
        CHECK(start.list.PlayIndex == 0);
        CHECK(start.platform.log.count("Mp3Player.Play") == 0);
        CHECK(start.platform.log.count("Pump.turn") == 0);
    }
    Player start({});
    start.choose(11);
    CHECK(start.flag() == "0");
    CHECK(start.list.RunIndex == 0);
}

TEST_CASE("A run prepares the main window for its row, step by step")
{
    Player start({"/a.mp3", "/b.mp3"});
    start.list.labtemp1.setCaption("1");
    Lines seen;
    start.platform.Mp3Player->onPlay = [&] {
        seen = {start.flag(),
                start.currentFile(),
                textOf(start.currentKind()),
                textOf(start.selected()),
                textOf(start.list.PlayIndex),
                textOf(start.list.RunIndex)};
    };
    CHECK(waitsForEver([&] { start.list.go_play_the_list(1); }));
    CHECK(seen == Lines{"0", "/b.mp3", "2", "1", "1", "1"});
    CHECK(start.engineCalls() == Lines{"MMControl1.Close", "Mp3Player.Stop", "Mp3Player.Close",
                                       "Mp3Player.Stop", "Mp3Player.Close", "Mp3Player.Open(/b.mp3)",
                                       "Mp3Player.Play"});
}

TEST_CASE("A run gives a WAV row to the other engine")
{
    Player start({"/a.wav"});
    CHECK(waitsForEver([&] { start.list.go_play_the_list(0); }));
    CHECK(start.engineCalls() == Lines{"MMControl1.Close", "Mp3Player.Stop", "Mp3Player.Close",
                                       "MMControl1.Close", "MMControl1.FileName = /a.wav", "MMControl1.Open",
                                       "MMControl1.Play"});
    CHECK(start.currentKind() == kind::wav);
}

TEST_CASE("The last three letters give the kind; one command alone minds their case")
{
    struct Case {
        Text row;
        int inRun, doubleClicked, playSelected;
    };
    const Case cases[] = {
        {"/a.mp3", 2, 2, 2},        {"/a.MP3", 2, 2, 1},  {"/a.Mp3", 2, 2, 1},
        {"/a.wav", 1, 1, 1},        {"/a.WAV", 1, 1, 1},  {"/amp3", 2, 2, 2},
        {"mp3", 2, 2, 2},           {"p3", 1, 1, 1},      {"", 1, 1, 1},
        {"/a.ogg", 1, 1, 1},        {"/a.mp3 ", 1, 1, 1}, {"/caf\xE9mp3", 2, 2, 2},
        {"/a.mp\xC2\xB3", 1, 1, 1},
    };
    for (const auto& c : cases) {
        CAPTURE(c.row);
        Player run({c.row});
        waitsForEver([&] { run.list.go_play_the_list(0); });
        CHECK(run.currentKind() == c.inRun);

        Player click({c.row});
        click.select(0);
        click.list.PlayListLB.DblClick.raise();
        CHECK(click.currentKind() == c.doubleClicked);

        Player selected({c.row});
        selected.select(0);
        selected.choose(17);
        CHECK(selected.currentKind() == c.playSelected);
    }
}

TEST_CASE("The stop operation on an MP3 file leaves the engine open at the start of the file")
{
    using Stop = void (PlayListEditor::*)();
    for (const Stop stop :
         {&PlayListEditor::stop_pl_first, &PlayListEditor::GoDoStop, &PlayListEditor::Stopimg1_Click}) {
        Player start({});
        start.current("/now.mp3", kind::mp3);
        start.player.pbar.setValue(40);
        start.player.Timer.setEnabled(false);
        start.player.Image3.setEnabled(true);
        start.player.paused_flag = 1;
        (start.list.*stop)();
        CHECK(start.engineCalls() == Lines{"Mp3Player.Stop", "Mp3Player.Close", "Mp3Player.Open(/now.mp3)"});
        CHECK(start.flag() == "1");
        CHECK(start.player.pbar.Value() == 0);
        CHECK(start.player.Timer.Enabled());
        CHECK_FALSE(start.player.Image3.Enabled());
        CHECK(start.player.paused_flag == 1);
        CHECK(start.currentFile() == "/now.mp3");
    }
}

TEST_CASE("The stop operation on any other kind only closes the WAV engine")
{
    for (const std::int16_t other : {kind::wav, std::int16_t{0}, std::int16_t{3}}) {
        Player start({});
        start.current("/now.wav", other);
        start.player.pbar.setValue(40);
        start.player.Timer.setEnabled(false);
        start.player.Image3.setEnabled(true);
        start.player.paused_flag = 1;
        start.list.Stopimg1_Click();
        CHECK(start.engineCalls() == Lines{"MMControl1.Close"});
        CHECK(start.flag() == "1");
        CHECK(start.player.pbar.Value() == 40);
        CHECK_FALSE(start.player.Timer.Enabled());
        CHECK_FALSE(start.player.Image3.Enabled());
        CHECK(start.player.paused_flag == 1);
    }
}

TEST_CASE("The stop operation has raised the flag and silenced the engine before it tries the file again")
{
    Player start({});
    start.current("/now.mp3", kind::mp3);
    start.player.Image3.setEnabled(true);
    start.player.pbar.setValue(40);
    start.player.Timer.setEnabled(false);
    start.sound.absent = {"/now.mp3"};
    start.meanwhile({[&] {
        CHECK(start.flag() == "1");
        CHECK_FALSE(start.sound.mp3Plays);
        CHECK(start.player.pbar.Value() == 0);
        CHECK(start.player.Timer.Enabled());
        CHECK(start.player.Image3.Enabled());
        start.sound.absent.clear();
    }});
    start.list.GoDoStop();
    CHECK(start.platform.log.count("Mp3Player.Open(/now.mp3)") == 2);
    CHECK_FALSE(start.player.Image3.Enabled());
}

TEST_CASE("A run stands in one of these states, and leaves it so")
{
    SUBCASE("Idle: any start command")
    {
        Player start({"/a.mp3"});
        CHECK(start.flag() == "0");
        CHECK(waitsForEver([&] { start.list.Playimg1_Click(); }));
    }
    SUBCASE("Idle after a stop: the flag stays up")
    {
        Player start({"/a.mp3"});
        start.list.GoDoStop();
        CHECK(start.flag() == "1");
        CHECK(waitsForEver([&] { start.list.Playimg1_Click(); }));
        CHECK(start.flag() == "0");
    }
    SUBCASE("Waiting for the track to begin: until the engine sounds")
    {
        Player start({"/a.mp3"});
        bool sounds = false;
        int turns = 0;
        start.platform.Mp3Player->isPlaying = [&] { return std::int16_t{sounds}; };
        start.meanwhile({[&] { ++turns; }, [&] { ++turns; }, [&] { sounds = true; }, [&] { ++turns; },
                         [&] { sounds = false; }});
        start.list.go_play_the_list(0);
        CHECK(turns == 3);
        CHECK(start.flag() == "0");
    }
    SUBCASE("Waiting for the track to end: by its end the next row follows")
    {
        Player start({"/a.mp3", "/b.mp3"});
        start.meanwhile({[&] { start.sound.trackEnds(); }});
        CHECK(waitsForEver([&] { start.list.go_play_the_list(0); }));
        CHECK(start.sound.mp3File == "/b.mp3");
        CHECK(start.flag() == "0");
    }
    SUBCASE("Waiting for the track to end, then Ending: by a stop the run returns")
    {
        Player start({"/a.mp3", "/b.mp3"});
        start.meanwhile({[&] { start.list.GoDoStop(); }});
        start.list.go_play_the_list(0);
        CHECK(start.flag() == "1");
        CHECK(start.currentFile() == "/a.mp3");
    }
    SUBCASE("Any number but 0 sounds")
    {
        Player start({"/a.mp3", "/b.wav"});
        std::deque<std::int16_t> answers{0, -1, 2, 0};
        start.platform.Mp3Player->isPlaying = [&] {
            const auto answer = answers.empty() ? std::int16_t{0} : answers.front();
            if (!answers.empty())
                answers.pop_front();
            return answer;
        };
        start.meanwhile({nullptr, nullptr, nullptr});
        CHECK(waitsForEver([&] { start.list.go_play_the_list(0); }));
        CHECK(start.currentFile() == "/b.wav");
    }
}

TEST_CASE("Play without a selection starts at the first row; with one there, and what lies behind it follows")
{
    Player all({"/0.mp3", "/1.mp3", "/2.mp3"});
    letTracksEnd(all);
    all.list.Playimg1_Click();
    CHECK(all.platform.log.count("Mp3Player.Play") == 3);

    Player some({"/0.mp3", "/1.mp3", "/2.mp3"});
    some.select(1);
    letTracksEnd(some);
    some.list.Playimg1_Click();
    CHECK(some.platform.log.count("Mp3Player.Play") == 2);
    CHECK(some.platform.log.count("Mp3Player.Open(/0.mp3)") == 0);
}

TEST_CASE("A run that ends at the last row resets nothing")
{
    Player start({"/0.mp3", "/1.mp3"});
    letTracksEnd(start);
    start.list.Playimg1_Click();
    CHECK(start.selected() == 1);
    CHECK(start.list.PlayIndex == 1);
    CHECK(start.list.RunIndex == 1);
    CHECK(start.flag() == "0");
    CHECK(start.currentFile() == "/1.mp3");
    CHECK(start.player.Image3.Enabled());
    CHECK(start.sound.mp3File == "/1.mp3");

    start.platform.log.clear();
    start.list.Nextimg1_Click(); // nothing more than a stop
    CHECK(start.engineCalls() == Lines{"Mp3Player.Stop", "Mp3Player.Close", "Mp3Player.Open(/1.mp3)"});
    start.platform.scriptedPump.steps.clear();
    CHECK(waitsForEver([&] { start.list.Previmg1_Click(); }));
    CHECK(start.sound.mp3File == "/0.mp3");
}

TEST_CASE("Next while the last row plays stops and starts nothing")
{
    Player start({"/0.mp3", "/1.mp3"});
    start.select(1);
    start.meanwhile({[&] { start.list.Nextimg1_Click(); }});
    start.list.Playimg1_Click();
    CHECK(start.flag() == "1");
    CHECK_FALSE(start.sound.mp3Plays);
    CHECK(start.list.PlayIndex == 1);
}

TEST_CASE("Previous on the first row stops and starts nothing, and the next Play starts from there")
{
    Player start({"/0.mp3", "/1.mp3"});
    start.meanwhile({[&] { start.list.Previmg1_Click(); }});
    start.list.Playimg1_Click();
    CHECK_FALSE(start.sound.mp3Plays);
    CHECK(start.selected() == 0);
    CHECK(waitsForEver([&] { start.list.Playimg1_Click(); }));
    CHECK(start.sound.mp3File == "/0.mp3");
}

TEST_CASE("Next and Previous follow the row started last, not the selection")
{
    Player start({"/0.mp3", "/1.mp3", "/2.mp3", "/3.mp3"});
    start.meanwhile({[&] {
        start.select(3);
        start.list.Nextimg1_Click();
    }});
    CHECK(waitsForEver([&] { start.list.Playimg1_Click(); }));
    CHECK(start.sound.mp3File == "/1.mp3");
    CHECK(start.selected() == 1);
}

TEST_CASE("Menu Start during a run stops nothing first, and the nest unwinds at the end of the inner run")
{
    Player start({"/0.mp3", "/1.mp3"});
    int turns = 0;
    start.meanwhile({[&] {
                         start.platform.log.clear();
                         start.choose(11);
                         ++turns; // only when the inner run is over
                         CHECK(start.list.RunIndex == 1);
                         CHECK(start.flag() == "0");
                     },
                     [&] {
                         CHECK(turns == 0);
                         CHECK(start.engineCalls().front() == "MMControl1.Close");
                         CHECK(start.platform.log.count("Mp3Player.Open(/0.mp3)") == 1);
                         start.sound.trackEnds();
                     },
                     [&] { start.sound.trackEnds(); }});
    start.select(1);
    start.list.Playimg1_Click();
    CHECK(turns == 1);
    CHECK(start.platform.scriptedPump.steps.empty());
}

TEST_CASE("A run that was interrupted never goes on where it stood")
{
    Player start({"/0.mp3", "/1.mp3", "/2.mp3"});
    Lines played;
    start.platform.Mp3Player->onPlay = [&] { played.push_back(start.sound.mp3File); };
    start.meanwhile({[&] { start.list.Nextimg1_Click(); }, [&] { start.list.Nextimg1_Click(); },
                     [&] { start.sound.trackEnds(); }});
    start.list.Playimg1_Click();
    CHECK(played == Lines{"/0.mp3", "/1.mp3", "/2.mp3"});
    CHECK(start.flag() == "0");
}

TEST_CASE("A stop in the inner run ends all the runs around it")
{
    Player start({"/0.mp3", "/1.mp3", "/2.mp3", "/3.mp3"});
    start.meanwhile({[&] { start.list.Nextimg1_Click(); }, [&] { start.list.Nextimg1_Click(); },
                     [&] { start.list.Stopimg1_Click(); }});
    start.list.Playimg1_Click();
    CHECK(start.flag() == "1");
    CHECK(start.currentFile() == "/2.mp3");
    CHECK(start.list.RunIndex == 2);
    CHECK(start.platform.log.count("Mp3Player.Play") == 3);
}

TEST_CASE("Stop on the main window ends the run once its track is silent")
{
    Player start({"/0.mp3", "/1.mp3"});
    start.meanwhile({[&] { start.player.Image2.Click.raise(); }});
    start.list.Playimg1_Click();
    CHECK(start.flag() == "1");
    CHECK(start.currentFile() == "/0.mp3");
    CHECK(start.list.PlayIndex == 0);
}

TEST_CASE("A list plays up to and with a WAV row, and stands still there")
{
    Player start({"/0.mp3", "/1.wav", "/2.mp3"});
    start.meanwhile(
        {[&] { start.sound.trackEnds(); }, [&] { start.sound.wavPlays = false; }, nullptr, nullptr});
    CHECK(waitsForEver([&] { start.list.Playimg1_Click(); }));
    CHECK(start.sound.wavFile == "/1.wav");
    CHECK(start.list.RunIndex == 1);
    CHECK(start.selected() == 1);
    CHECK(start.flag() == "0");
}

TEST_CASE("A run left behind at a WAV row ends with the first MP3 that begins and ends under its eyes")
{
    Player start({"/0.wav", "/1.mp3"});
    Lines ends;
    start.meanwhile({[&] {
                         start.list.Nextimg1_Click();
                         ends.push_back("inner");
                     },
                     [&] { start.sound.trackEnds(); },
                     // The outer run did not see that track: it waits on for one to begin.
                     [&] { start.player.Image1.Click.raise(); }, [&] { start.sound.trackEnds(); }});
    start.list.Playimg1_Click();
    ends.push_back("outer");
    CHECK(ends == Lines{"inner", "outer"});
    CHECK(start.platform.scriptedPump.steps.empty());
    CHECK(start.list.RunIndex == 1);
}

TEST_CASE("Stop at a WAV row silences it and leaves the run waiting")
{
    Player start({"/0.wav", "/1.mp3"});
    start.meanwhile({[&] { start.list.Stopimg1_Click(); }, nullptr});
    CHECK(waitsForEver([&] { start.list.Playimg1_Click(); }));
    CHECK(start.sound.wavFile == "");
    CHECK(start.flag() == "1");
    CHECK(start.currentFile() == "/0.wav");
}

TEST_CASE("A list started in a pause does not sound, ends the pause, and its run waits")
{
    for (const Text row : {"/0.mp3", "/0.wav"}) {
        CAPTURE(row);
        Player start({row, row});
        start.meanwhile({[&] {
            start.player.Image3.Click.raise();
            CHECK(start.player.paused_flag == 1);
            start.list.Nextimg1_Click();
        }});
        CHECK(waitsForEver([&] { start.list.Playimg1_Click(); }));
        CHECK(start.player.paused_flag == 0);
        CHECK_FALSE(start.sound.mp3Plays);
        CHECK_FALSE(start.sound.wavPlays);
        CHECK(start.list.RunIndex == 1);
        CHECK(start.platform.log.count("Mp3Player.Pause") == (row == "/0.mp3" ? 1 : 0));
    }
}

TEST_CASE("A paused track keeps its run waiting")
{
    Player start({"/0.mp3", "/1.mp3"});
    start.meanwhile({[&] { start.player.Image3.Click.raise(); }, [&] { start.sound.trackEnds(); },
                     [&] { start.player.Image3.Click.raise(); }});
    CHECK(waitsForEver([&] { start.list.Playimg1_Click(); }));
    CHECK(start.sound.mp3File == "/0.mp3");
    CHECK(start.sound.mp3Plays);
}

TEST_CASE("Playing one row alone raises the flag and moves no cursor")
{
    for (const bool doubleClick : {true, false}) {
        CAPTURE(doubleClick);
        Player start({"/0.mp3", "/1.mp3", "/2.mp3"});
        start.current("/now.mp3", kind::mp3);
        start.list.labtemp1.setCaption("0");
        start.list.RunIndex = 2;
        start.list.PlayIndex = 2;
        start.select(1);
        if (doubleClick)
            start.list.PlayListLB.DblClick.raise();
        else
            start.choose(17);
        CHECK(start.engineCalls() == Lines{"Mp3Player.Stop", "Mp3Player.Close", "Mp3Player.Open(/now.mp3)",
                                           "MMControl1.Close", "Mp3Player.Stop", "Mp3Player.Close",
                                           "Mp3Player.Stop", "Mp3Player.Close", "Mp3Player.Open(/1.mp3)",
                                           "Mp3Player.Play"});
        CHECK(start.flag() == "1");
        CHECK(start.list.RunIndex == 2);
        CHECK(start.list.PlayIndex == 2);
        CHECK(start.selected() == 1);
        CHECK(start.sound.mp3Plays);
        CHECK(start.platform.log.count("Pump.turn") == 0);
    }
}

TEST_CASE("No row follows one that plays alone, also inside a run that waits")
{
    Player start({"/0.mp3", "/1.mp3", "/2.mp3"});
    start.meanwhile({[&] {
                         start.select(1);
                         start.list.PlayListLB.DblClick.raise();
                     },
                     [&] { start.sound.trackEnds(); }});
    start.list.Playimg1_Click();
    CHECK(start.currentFile() == "/1.mp3");
    CHECK(start.platform.log.count("Mp3Player.Play") == 2);
    CHECK(start.list.PlayIndex == 0);
    CHECK(start.platform.scriptedPump.steps.empty());
}

TEST_CASE("Play Selected without a selection only stops; a double click sets an empty file all the same")
{
    Player selected({"/0.mp3"});
    selected.current("/now.mp3", kind::mp3);
    selected.choose(17);
    CHECK(selected.currentFile() == "/now.mp3");
    CHECK(selected.currentKind() == kind::mp3);
    CHECK(selected.stops() == 1);

    Player empty({});
    empty.current("/now.mp3", kind::mp3);
    empty.list.PlayListLB.DblClick.raise();
    CHECK(empty.currentFile() == "");
    CHECK(empty.currentKind() == kind::wav);
    CHECK(empty.stops() == 1);
}

TEST_CASE("A double click of the user's on the empty part plays the selected row")
{
    Player start({"/0.mp3", "/1.mp3"});
    start.list.Show();
    QCoreApplication::processEvents();
    start.select(1);
    ListHand hand(start.list, start.list.PlayListLB);
    hand.doubleClick(hand.emptyPart());
    CHECK(start.sound.mp3File == "/1.mp3");
    hand.doubleClick(hand.middleOf(0));
    CHECK(start.sound.mp3File == "/0.mp3");
}

TEST_CASE("Rows added during a run are played up to the limit of its start alone")
{
    Player start({"/0.mp3", "/1.mp3"});
    start.meanwhile({[&] {
                         start.list.PlayListLB.AddItem("/2.mp3");
                         start.sound.trackEnds();
                     },
                     [&] { start.sound.trackEnds(); }});
    start.list.Playimg1_Click();
    CHECK(start.currentFile() == "/1.mp3");
    CHECK(start.list.PlayIndex == 1);
    CHECK(start.list.RunIndex == 2); // past the old limit; the row itself was not started
}

TEST_CASE("A run past removed rows goes on to its old limit with empty texts")
{
    Player start({"/0.mp3", "/1.mp3", "/2.mp3", "/3.mp3"});
    bool sounds = true;
    start.platform.Mp3Player->isPlaying = [&] { return std::int16_t{sounds}; };
    Lines files;
    const Step note = [&] { files.push_back(start.currentFile()); };
    const Step begin = [&] {
        note();
        sounds = true;
    };
    const Step end = [&] { sounds = false; };
    start.meanwhile({[&] {
                         while (start.list.PlayListLB.ListCount() > 1)
                             start.list.PlayListLB.RemoveItem(1);
                         sounds = false;
                     },
                     begin, end, begin, end});
    start.select(1);
    start.list.Playimg1_Click();
    CHECK(files == Lines{"", ""});
    CHECK(start.currentKind() == kind::wav);
    CHECK(start.list.PlayIndex == 3);
    CHECK(start.selected() == -1); // the started row was removed, and rows outside the list select nothing
    CHECK(start.list.RunIndex == 4);
}

TEST_CASE("A row that becomes the last one while it plays ends the run")
{
    Player start({"/0.mp3", "/1.mp3", "/2.mp3"});
    start.meanwhile({[&] {
        start.list.PlayListLB.RemoveItem(2);
        start.list.PlayListLB.RemoveItem(1);
        start.sound.trackEnds();
    }});
    start.list.Playimg1_Click();
    CHECK(start.list.RunIndex == 0);
    CHECK(start.currentFile() == "/0.mp3");
}

TEST_CASE("Moving and removing rows during a run changes what comes next: the row is a plain number")
{
    Player moved({"/0.mp3", "/1.mp3", "/2.mp3"});
    moved.meanwhile({[&] {
        moved.list.moveitemdownimg_Click(); // the playing row
        moved.sound.trackEnds();
    }});
    CHECK(waitsForEver([&] { moved.list.Playimg1_Click(); }));
    CHECK(moved.sound.mp3File == "/0.mp3"); // once more
    CHECK(moved.list.PlayIndex == 1);

    Player removed({"/0.mp3", "/1.mp3", "/2.mp3"});
    removed.meanwhile({[&] {
        removed.list.removeSelected();
        removed.sound.trackEnds();
    }});
    CHECK(waitsForEver([&] { removed.list.Playimg1_Click(); }));
    CHECK(removed.sound.mp3File == "/2.mp3");
}

TEST_CASE("A row whose file does not open is tried on, and the commands work meanwhile")
{
    Player start({"/gone.mp3", "/1.mp3"});
    start.sound.absent = {"/gone.mp3"};
    start.meanwhile({nullptr,
                     [&] {
                         start.sound.absent.clear(); // so that the stop can open it again
                         start.list.Nextimg1_Click();
                         CHECK(start.list.RunIndex == 1);
                         CHECK(start.flag() == "0");
                     },
                     [&] { start.sound.trackEnds(); }});
    CHECK(waitsForEver([&] { start.list.Playimg1_Click(); }));
    // The inner run is over; the open that was being tried goes on with the file that is current now.
    CHECK(start.sound.mp3File == "/1.mp3");
    CHECK(start.sound.mp3Plays);
    CHECK(start.platform.log.count("Mp3Player.Play") == 2);
}

TEST_CASE("Next and Stop at a row whose file is missing wait for it, too, until another file is opened")
{
    Player start({"/gone.mp3", "/1.mp3"});
    start.sound.absent = {"/gone.mp3"};
    int ended = 0;
    start.meanwhile({[&] {
                         start.list.Nextimg1_Click();
                         ++ended;
                         CHECK(start.list.RunIndex == 1);
                     },
                     [&] {
                         start.list.Stopimg1_Click();
                         ++ended;
                     },
                     [&] {
                         CHECK(ended == 0);
                         CHECK(start.platform.log.count("Mp3Player.Play") == 0);
                         start.current("/1.mp3", kind::mp3);
                     },
                     [&] { // the row that Next leads to
                         CHECK(ended == 1);
                         CHECK(start.sound.mp3File == "/1.mp3");
                         start.sound.trackEnds();
                     },
                     [&] { start.sound.trackEnds(); }}); // what the first run was trying, with that file
    start.list.Playimg1_Click();
    CHECK(ended == 2);
    CHECK(start.platform.log.count("Mp3Player.Play") == 2);
    CHECK(start.platform.scriptedPump.steps.empty());
}

TEST_CASE("After a cancelled dialog of the MP3 kind the list's Play waits for a file; menu Start does not")
{
    Player start({"/0.mp3"});
    start.current("", kind::mp3);
    bool startIsOver = false;
    start.meanwhile({[&] {
                         CHECK(start.flag() == "1");
                         CHECK(start.platform.log.count("Mp3Player.Play") == 0);
                         start.choose(11);
                         startIsOver = true;
                     },
                     [&] {
                         CHECK(start.sound.mp3File == "/0.mp3");
                         CHECK(start.sound.mp3Plays);
                         start.sound.trackEnds();
                     }});
    CHECK(waitsForEver([&] { start.list.Playimg1_Click(); })); // what was waiting plays the row again
    CHECK(startIsOver);
    CHECK(start.platform.log.count("Mp3Player.Play") == 2);
}

TEST_CASE("Rows are counted in 16 bits where a run reaches them")
{
    Player start({});
    for (int row = 0; row < 32769; ++row)
        start.list.PlayListLB.AddItem("/" + std::to_string(row) + ".mp3");
    CHECK(waitsForEver([&] { start.list.go_play_the_list(32767); }));
    CHECK(start.currentFile() == "/32767.mp3");
    CHECK(start.selected() == 32767);
    CHECK(failureOf([&] { start.list.go_play_the_list(32768); }) == 6);
    CHECK(start.currentFile() == "/32767.mp3");
    CHECK(start.list.PlayIndex == 32767);
}

TEST_CASE("The tick keeps the list while a run waits")
{
    Player start({"/0.mp3", "/1.mp3"});
    start.meanwhile({[&] {
        start.list.PlayListLB.AddItem("/2.mp3");
        start.list.Timer1.Timer.raise();
        start.player.Timer.Timer.raise();
    }});
    CHECK(waitsForEver([&] { start.list.Playimg1_Click(); }));
    CHECK(start.file("/app/deflist.vlp") == "/0.mp3\r\n/1.mp3\r\n/2.mp3\r\n");
}

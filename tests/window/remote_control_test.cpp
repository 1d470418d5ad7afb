// SPDX-License-Identifier: GPL-3.0-or-later
#include "fakes/fake_platform.h"
#include "player/file_kind.h"
#include "player/start_up.h"
#include "playlist/play_list_editor.h"
#include "program.h"

#include <doctest/doctest.h>

using State = Hearing::State;
using Status = MediaRemote::Status;

namespace
{

struct Played {
    FakePlatform platform;
    Program program{platform};

    explicit Played(std::int16_t fileKind = kind::mp3)
    {
        program.start();
        platform.OpenSaveDialog1->filterIndex = fileKind;
        player().mp3filename.setCaption(fileKind == kind::mp3 ? "/music/a.mp3" : "/music/a.wav");
        mp3().length = wav().length = 60000;
        mp3().frameDuration = 25;
        hears(State::sounding, 1000);
        platform.log.clear();
    }

    void hears(State state, std::int32_t place)
    {
        const bool isMp3 = platform.OpenSaveDialog1->filterIndex == kind::mp3;
        mp3().heard = isMp3 ? state : State::idle;
        wav().heard = isMp3 ? State::idle : state;
        mp3().heardAt = wav().position = place;
        mp3().isPlaying = [=] { return static_cast<std::int16_t>(isMp3 && state != State::idle); };
    }

    // A list that no run has begun yet.
    void list(const std::vector<Text>& rows, std::int32_t at)
    {
        for (const auto& row : rows)
            program.playListEditor().PlayListLB.AddItem(row);
        program.playListEditor().PlayIndex = at;
        mp3().isPlaying = []() -> std::int16_t { throw StillWaiting(); };
    }

    // The list's run goes on for as long as its rows sound.
    void next() { CHECK_THROWS_AS(remote().Next.raise(), StillWaiting); }

    MediaRemote::Shown shown()
    {
        remote().Asked.raise();
        return remote().shown;
    }
    Text engineCalls(const Text& engine)
    {
        Text calls;
        for (const auto& call : platform.log.of(engine))
            calls += call + "\n";
        platform.log.clear();
        return calls;
    }

    StartUp& player() { return program.startUp(); }
    RecordingRemote& remote() { return *platform.remote; }
    RecordingMp3Play& mp3() { return *platform.Mp3Player; }
    RecordingMMControl& wav() { return *platform.MMControl1; }
};

}

TEST_CASE("The desktop's Pause pauses once, and its Play goes on")
{
    Played played;
    played.remote().Pause.raise();
    played.hears(State::halted, 1000);
    played.remote().Pause.raise();
    CHECK(played.shown().status == Status::paused);
    played.remote().Play.raise();
    CHECK(played.engineCalls("Mp3Player") == "Mp3Player.Pause\nMp3Player.Play\n");
    CHECK(played.player().paused_flag == 0);
}

TEST_CASE("The desktop's one key for play and pause pauses what plays")
{
    Played played;
    played.remote().PlayPause.raise();
    CHECK(played.engineCalls("Mp3Player") == "Mp3Player.Pause\n");
    CHECK(played.player().paused_flag == 1);
}

TEST_CASE("A file that halts without the pause flag is shown as stopped")
{
    Played played;
    played.hears(State::halted, 1000);
    CHECK(played.player().paused_flag == 0);
    CHECK(played.shown().status == Status::stopped);
}

TEST_CASE("The desktop's Play leaves a playing file alone")
{
    Played played;
    played.remote().Play.raise();
    CHECK(played.platform.log.of("Mp3Player").empty());
}

TEST_CASE("The desktop's Play starts a stopped file from its beginning")
{
    Played played;
    played.hears(State::idle, 0);
    played.remote().PlayPause.raise();
    CHECK(played.platform.log.count("Mp3Player.Open(/music/a.mp3)") == 1);
    CHECK(played.platform.log.count("Mp3Player.Play") == 1);
}

TEST_CASE("The desktop's Play asks for no file")
{
    Played played;
    played.player().mp3filename.setCaption("");
    played.remote().Play.raise();
    played.remote().PlayPause.raise();
    CHECK(played.platform.log.count("OpenSaveDialog1.ShowOpen") == 0);
}

TEST_CASE("The desktop's Stop does what the Stop image does, and nothing to a stopped player")
{
    Played played;
    played.remote().Stop.raise();
    CHECK(played.program.playListEditor().labtemp1.Caption() == "1");
    CHECK_FALSE(played.player().Image3.Enabled());
    played.hears(State::idle, 0);
    played.platform.log.clear();
    played.remote().Stop.raise();
    CHECK(played.platform.log.of("Mp3Player").empty());
}

TEST_CASE("The desktop's Quit ends the program as the close image does")
{
    Played played;
    played.remote().Quit.raise();
    CHECK(played.platform.ends == 1);
    CHECK(played.platform.log.count("Mp3Player.Stop") == 0);
}

TEST_CASE("The desktop's Raise brings both windows within reach, a docked list beside the main window")
{
    for (const bool isDocked : {false, true}) {
        CAPTURE(isDocked);
        Played played;
        PlayListEditor& list = played.program.playListEditor();
        StartUp& player = played.player();
        list.Show();
        player.dock_bottom = isDocked;
        player.dock_top = player.dock_left = player.dock_right = false;
        for (Form* window : {static_cast<Form*>(&player), static_cast<Form*>(&list)}) {
            window->setLeft(-480000);
            window->setTop(0);
        }
        played.remote().Raise.raise();
        CHECK(player.Left() == 0);
        CHECK(list.Left() == 0);
        CHECK((list.Top() == player.Top() + player.Height()) == isDocked);
    }
}

TEST_CASE("The desktop's Raise brings a list along that is docked at any side")
{
    for (bool StartUp::*const side :
         {&StartUp::dock_bottom, &StartUp::dock_top, &StartUp::dock_right, &StartUp::dock_left}) {
        Played played;
        PlayListEditor& list = played.program.playListEditor();
        StartUp& player = played.player();
        list.Show();
        player.dock_bottom = player.dock_top = player.dock_right = player.dock_left = false;
        player.*side = true;
        player.setTop(4500);
        list.setLeft(-480000);
        played.remote().Raise.raise();
        CHECK((list.Top() == player.Top() + player.Height()) == (side == &StartUp::dock_bottom));
        CHECK((list.Top() + list.Height() == player.Top()) == (side == &StartUp::dock_top));
        CHECK((list.Left() == player.Left() + player.Width()) == (side == &StartUp::dock_right));
        CHECK((list.Left() + list.Width() == player.Left()) == (side == &StartUp::dock_left));
    }
}

TEST_CASE("The desktop's Raise leaves a hidden list where it is")
{
    Played played;
    PlayListEditor& list = played.program.playListEditor();
    list.Hide();
    list.setLeft(-480000);
    played.remote().Raise.raise();
    CHECK(list.Left() == -480000);
}

TEST_CASE("The desktop's Raise brings a minimised and a hidden window back")
{
    Played played;
    played.player().setWindowState(Form::minimized);
    played.remote().Raise.raise();
    CHECK(played.player().WindowState() == Form::normal);
    played.player().Hide();
    played.remote().Raise.raise();
    CHECK(played.player().Visible());
}

TEST_CASE("A WAV file that was only opened is stopped, and Play starts it")
{
    Played played(kind::wav);
    played.player().Image3.setEnabled(true); // an MP3 file played before
    played.hears(State::idle, 0);
    CHECK(played.shown().status == Status::stopped);
    CHECK_FALSE(played.shown().canSeek);
    played.platform.log.clear();
    played.remote().Play.raise();
    CHECK(played.platform.log.count("MMControl1.Play") == 1);
}

TEST_CASE("A file that sounds and says no length cannot be moved in")
{
    for (const std::int16_t fileKind : {kind::mp3, kind::wav}) {
        CAPTURE(fileKind);
        Played played(fileKind);
        CHECK(played.shown().canSeek);
        played.mp3().length = played.wav().length = 0;
        CHECK_FALSE(played.shown().canSeek);
    }
}

TEST_CASE("What is heard counts where the pause flag says otherwise")
{
    for (const auto fileKind : {kind::wav, kind::mp3}) {
        CAPTURE(fileKind);
        Played played(fileKind);
        played.player().paused_flag = 1;
        CHECK(played.shown().status == Status::playing);
        played.hears(State::halted, 1000);
        CHECK(played.shown().status == Status::paused);
        played.hears(State::idle, 0);
        CHECK(played.shown().status == Status::stopped);
    }
}

TEST_CASE("Pause halts what sounds although the flag says paused")
{
    Played played(kind::wav);
    played.player().paused_flag = 1; // the position bar was moved in a pause
    played.remote().Pause.raise();
    CHECK(played.platform.log.of("MMControl1").back() == "MMControl1.Stop");
    CHECK(played.player().paused_flag == 1);
}

TEST_CASE("Asking what plays takes no answer away from the list's wait")
{
    Played played;
    int asked = 0;
    played.mp3().isPlaying = [&] {
        ++asked;
        return std::int16_t{1};
    };
    CHECK(played.shown().status == Status::playing);
    CHECK(asked == 0);
}

TEST_CASE("An MP3 file shows its tag, its genre and its length, and its name where it has no title")
{
    Played played;
    StartUp& window = played.player();
    window.sartist.setCaption("Somebody");
    window.salbum.setCaption("A record");
    window.sgenre.setCaption("Jazz");
    CHECK(played.shown().title == "a.mp3");
    window.stitle.setCaption("A song");
    CHECK(played.shown().title == "A song");
    CHECK(played.shown().artist == "Somebody");
    CHECK(played.shown().album == "A record");
    CHECK(played.shown().genre == "Jazz");
    CHECK(played.shown().length == 60000);
}

TEST_CASE("A file without a tag of its own shows none of the file before it")
{
    for (const auto fileKind : {kind::wav, kind::mp3}) {
        CAPTURE(fileKind);
        Played played(fileKind);
        StartUp& window = played.player();
        for (auto* label : {&window.stitle, &window.sartist, &window.salbum, &window.sgenre})
            label->setCaption("The file before");
        played.mp3().length = 0; // it is not open: the list waits for it
        const auto shown = played.shown();
        CHECK(shown.title == (fileKind == kind::wav ? "a.wav" : "a.mp3"));
        CHECK(shown.artist + shown.album + shown.genre == "");
    }
}

TEST_CASE("Each start of another row is another track, and one track stays one")
{
    Played played;
    const auto first = played.shown().track;
    CHECK(played.shown().track == first);
    CHECK(first != 0);
    played.program.playListEditor().PlayIndex = 1; // the same file once more
    const auto second = played.shown().track;
    CHECK(second != first);
    CHECK(played.shown().track == second);
    played.player().mp3filename.setCaption("/music/b.mp3");
    const auto third = played.shown().track;
    CHECK(third != second);
    CHECK(third != first);
}

TEST_CASE("Next and Previous can be where the list has a row, and do nothing where it has none")
{
    struct Case {
        std::size_t rows;
        std::int32_t at;
        bool next;
        bool previous;
    };
    const Case cases[] = {{0, 0, false, false}, {1, 0, false, false}, {3, 0, true, false},
                          {3, 1, true, true},   {3, 2, false, true},  {2, 5, false, false}};
    for (const auto& c : cases) {
        CAPTURE(c.rows);
        CAPTURE(c.at);
        Played played;
        played.list(std::vector<Text>(c.rows, "/music/b.mp3"), c.at);
        CHECK(played.shown().canGoNext == c.next);
        CHECK(played.shown().canGoPrevious == c.previous);
        played.platform.log.clear();
        if (!c.next)
            played.remote().Next.raise();
        if (!c.previous)
            played.remote().Previous.raise();
        CHECK(played.platform.log.of("Mp3Player").empty());
    }
}

TEST_CASE("Next and Previous play the row that follows the list's last start, and the one before it")
{
    Played played;
    played.list({"/music/a.mp3", "/music/b.mp3", "/music/c.mp3"}, 1);
    played.next();
    CHECK(played.player().mp3filename.Caption() == "/music/c.mp3");
    CHECK(played.platform.log.of("Mp3Player").back() == "Mp3Player.Play");
    CHECK_THROWS_AS(played.remote().Previous.raise(), StillWaiting);
    CHECK(played.player().mp3filename.Caption() == "/music/b.mp3");
    CHECK(played.program.playListEditor().PlayListLB.ListIndex() == 1);
}

TEST_CASE("A stopped player goes to the next row and stays stopped; Play then begins it")
{
    Played played;
    played.list({"/music/a.mp3", "/music/b.mp3"}, 0);
    played.mp3().heard = State::idle;
    bool open = false;
    played.mp3().onCall = [&](const Text& call) {
        if (call.starts_with("Open"))
            open = true;
        if (call == "Close")
            open = false;
        if (call == "Play")
            CHECK_FALSE(open);
    };
    played.next();
    CHECK(played.player().mp3filename.Caption() == "/music/b.mp3");
    CHECK(played.player().paused_flag == 0);
    CHECK(played.shown().status == Status::stopped);
    played.mp3().onCall = {};
    played.platform.log.clear();
    played.remote().Play.raise();
    CHECK(played.platform.log.count("Mp3Player.Open(/music/b.mp3)") == 1);
    CHECK(played.platform.log.of("Mp3Player").back() == "Mp3Player.Play");
}

TEST_CASE("An MP3 file is moved to the very frame, held to its start")
{
    struct Case {
        std::int64_t by;
        Text call;
    };
    const Case cases[] = {{9000, "Seek(400)"},
                          {-500, "Seek(20)"},
                          {-1000, "Seek(0)"},
                          {-90000, "Seek(0)"},
                          {std::numeric_limits<std::int64_t>::min(), "Seek(0)"},
                          {59000, "Seek(2400)"}};
    for (const auto& c : cases) {
        CAPTURE(c.by);
        Played played;
        played.remote().Seek.raise(c.by);
        CHECK(played.engineCalls("Mp3Player") == "Mp3Player." + c.call + "\n");
        CHECK(played.remote().jumps.size() == 1);
    }
}

TEST_CASE("What lies beyond the end is the next row")
{
    for (const std::int64_t by : {std::int64_t{59001}, std::numeric_limits<std::int64_t>::max()}) {
        CAPTURE(by);
        Played played;
        played.list({"/music/a.mp3", "/music/b.mp3"}, 0);
        CHECK_THROWS_AS(played.remote().Seek.raise(by), StillWaiting);
        CHECK(played.player().mp3filename.Caption() == "/music/b.mp3");
    }
}

TEST_CASE("Beyond the end of the last row is silence")
{
    Played played;
    played.list({"/music/a.mp3"}, 0);
    played.remote().Seek.raise(70000);
    CHECK(played.platform.log.count("Mp3Player.Stop") == 1);
    CHECK(played.platform.log.count("Mp3Player.Play") == 0);
    CHECK(played.program.playListEditor().labtemp1.Caption() == "1");
}

TEST_CASE("A WAV file that sounds is opened anew at the millisecond and sounds on")
{
    Played played(kind::wav);
    played.remote().SetPosition.raise(played.shown().track, 12345);
    CHECK(played.engineCalls("MMControl1") == "MMControl1.Close\nMMControl1.FileName = /music/a.wav\n"
                                              "MMControl1.Open\nMMControl1.From = 12345\nMMControl1.Play\n");
}

TEST_CASE("A WAV file in a pause waits at its new place")
{
    Played played(kind::wav);
    played.player().paused_flag = 1;
    played.hears(State::halted, 1000);
    played.remote().SetPosition.raise(played.shown().track, 0);
    CHECK(played.engineCalls("MMControl1") == "MMControl1.Close\nMMControl1.FileName = /music/a.wav\n"
                                              "MMControl1.Open\nMMControl1.From = 0\n");
    CHECK(played.player().paused_flag == 1);
}

TEST_CASE("A position of another track, or one that the track does not have, moves nothing")
{
    Played played;
    const auto track = played.shown().track;
    played.remote().SetPosition.raise(track + 1, 5000);
    played.remote().SetPosition.raise(0, 5000);
    played.remote().SetPosition.raise(track, -1);
    played.remote().SetPosition.raise(track, 60001);
    played.hears(State::idle, 0);
    played.remote().SetPosition.raise(track, 5000);
    played.remote().Seek.raise(5000);
    CHECK(played.platform.log.of("Mp3Player").empty());
    CHECK(played.remote().jumps.empty());
    played.hears(State::halted, 1000);
    played.player().paused_flag = 1;
    played.remote().SetPosition.raise(track, 60000);
    CHECK(played.engineCalls("Mp3Player") == "Mp3Player.Seek(2400)\n");
}

TEST_CASE("A jump by the position bar is told")
{
    Played played;
    played.shown();
    CHECK(played.remote().jumps.empty());
    played.hears(State::sounding, 40000);
    played.shown();
    CHECK(played.remote().jumps == std::vector<std::int32_t>{40000});
    CHECK(played.remote().place == 40000);
}

TEST_CASE("The volume is the bar's, and is set as if its thumb were dropped")
{
    Played played;
    StartUp& window = played.player();
    CHECK(played.shown().volume == window.volslider.Value());
    for (const std::int32_t percent : {0, 1, 33, 50, 99, 100}) {
        CAPTURE(percent);
        played.platform.log.clear();
        played.remote().SetVolume.raise(percent);
        const Text level = std::to_string(percent);
        CHECK(played.engineCalls("Mp3Player") == "Mp3Player.SetVolume(" + level + ", " + level + ")\n");
        CHECK(window.volslider.Value() == percent);
        const Twips travel = window.vslider_bg.Width() - window.vslider_img2.Width();
        CHECK(window.vslider_img2.Left() ==
              doctest::Approx(window.vslider_bg.Left() + travel * static_cast<Twips>(percent) / 100));
        CHECK(played.remote().shown.volume == percent);
    }
}

#include "fakes/fake_platform.h"
#include "player/start_up.h"
#include "playlist/play_list_editor.h"
#include "program.h"

#include <doctest/doctest.h>

namespace
{

struct Played {
    FakePlatform platform;
    Program program{platform};
    bool sounds = true;

    Played()
    {
        program.start();
        platform.OpenSaveDialog1->filterIndex = 2;
        player().mp3filename.setCaption("/a.mp3");
        platform.Mp3Player->isPlaying = [this] { return static_cast<std::int16_t>(sounds); };
        platform.log.clear();
    }

    StartUp& player() { return program.startUp(); }
    MediaRemote& remote() { return *platform.remote; }
};

}

TEST_CASE("The desktop's Pause pauses once, and its Play goes on")
{
    Played played;
    played.remote().Pause.raise();
    played.remote().Pause.raise();
    played.remote().Play.raise();
    CHECK(played.platform.log.of("Mp3Player") == std::vector<Text>{"Mp3Player.Pause", "Mp3Player.Play"});
    CHECK(played.player().paused_flag == 0);
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
    played.sounds = false;
    played.remote().PlayPause.raise();
    CHECK(played.platform.log.count("Mp3Player.Open(/a.mp3)") == 1);
    CHECK(played.platform.log.count("Mp3Player.Play") == 1);
}

TEST_CASE("The desktop's Stop does what the Stop image does")
{
    Played played;
    played.remote().Stop.raise();
    CHECK(played.program.playListEditor().labtemp1.Caption() == "1");
    CHECK_FALSE(played.player().Image3.Enabled());
}

TEST_CASE("The desktop's Quit ends the program as the close image does")
{
    Played played;
    played.remote().Quit.raise();
    CHECK(played.platform.ends == 1);
    CHECK(played.platform.log.count("Mp3Player.Stop") == 0);
}

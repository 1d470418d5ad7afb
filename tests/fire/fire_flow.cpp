// SPDX-License-Identifier: GPL-3.0-or-later
// The flows that need no window, on the real parts: fire_flow FLOW FOLDER [furnish].
#include "tests/fire/ground.h"

#include "engines/audio/mpg123_play.h"
#include "engines/audio/sound_output.h"
#include "engines/audio/unopened_files.h"
#include "tests/support/mp3_files.h"
#include "tests/support/window_thread.h"

namespace
{

// The engine as the program makes it.
struct Engine {
    explicit Engine(Ground& ground) :
        output(ground.places.state + "/levels", activity, *ground.notes), unopened(ground.shell),
        mp3(audio::makeMpg123Play(output, window, ground.shell, *ground.notes, unopened))
    {
    }

    WindowThread window;
    NoActivity activity;
    audio::SoundOutput output;
    audio::UnopenedFiles unopened;
    std::unique_ptr<Mp3Play> mp3;
};

void furnishTag(const Places& places)
{
    const Text old = v2Tag(3, v2Frame(3, "TIT2", Text(1, '\0') + "Old title")) + mp3Frames(200);
    putFile(places.music + "/song.mp3", old + v1Tag({"Old title", "Old artist", "Old album", "1999"}));
}

void tag(Ground& ground)
{
    Engine engine(ground);
    engine.mp3->Open(ground.places.music + "/song.mp3", "");
    say("found", engine.mp3->Title());
    engine.mp3->setTitle(Text(400, 'n') + " a new title");
    engine.mp3->setArtist("A new artist");
    engine.mp3->setYear(2001);
    engine.mp3->Close();
    engine.mp3->WriteTag();
}

constexpr Flow flows[] = {
    {"tag", furnishTag, tag},
};

}

int main(int argc, char** argv) { return runFlow(flows, argc, argv); }

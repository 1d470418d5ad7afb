// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/fire/flows.h"

#include "engines/audio/mpg123_play.h"
#include "engines/audio/sound_output.h"
#include "engines/audio/unopened_files.h"
#include "engines/codec/encode_jobs.h"
#include "tests/support/mp3_files.h"
#include "tests/support/wav_files.h"
#include "tests/support/window_thread.h"

namespace
{

constexpr std::int64_t frames = 15000; // of each sound

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
    engine.mp3->setTitle(Text(400, 'n') + " a new title");
    engine.mp3->setArtist("A new artist");
    engine.mp3->setYear(2001);
    engine.mp3->Close();
    engine.mp3->WriteTag();
}

// Of two files the first has its target already.
void furnishEncoding(const Places& places)
{
    for (const char* name : {"/a.wav", "/b.wav"})
        putPcmWav(places.music + name, music(frames, 44100, 2, name[1]));
    putFile(places.output + "/a.mp3", "an old song");
}

void encode(Ground& ground)
{
    WindowThread window;
    const auto encoder = codec::makeEncodeJobs(window, ground.shell, *ground.notes);
    for (const char* name : {"/a", "/b"}) {
        bool isDone = false;
        encoder->Done.calls([&] { isDone = true; });
        encoder->Open(ground.places.music + name + ".wav", ground.places.output + name + ".mp3");
        encoder->Start();
        window.runUntil([&] { return isDone; });
    }
}

void furnishDecoding(const Places& places)
{
    for (const char* name : {"/a.mp3", "/b.mp3"})
        putFile(places.music + name, mp3Frames(name[1]));
    putFile(places.output + "/a.wav", "an old sound");
}

void decode(Ground& ground)
{
    Engine engine(ground);
    for (const char* name : {"/a", "/b"}) {
        bool isDone = false;
        engine.mp3->Done.calls([&] { isDone = true; });
        engine.mp3->Open(ground.places.music + name + ".mp3", ground.places.output + name + ".wav");
        engine.mp3->Play();
        engine.window.runUntil([&] { return isDone; });
        engine.mp3->Close();
    }
}

void furnishNothing(const Places&) {}

void levels(Ground& ground)
{
    Engine engine(ground);
    engine.output.setLevels({30, 40});
}

}

const Flows songFlows{
    {"tag", furnishTag, tag},
    {"encode", furnishEncoding, encode},
    {"decode", furnishDecoding, decode},
    {"levels", furnishNothing, levels},
};

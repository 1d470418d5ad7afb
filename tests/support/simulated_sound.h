// SPDX-License-Identifier: GPL-3.0-or-later
// Both engines of a fake platform, with what a listener would hear. Time moves when a test says so.
#pragma once

#include "fakes/fake_platform.h"

#include <set>

class SimulatedSound
{
public:
    explicit SimulatedSound(FakePlatform& platform) : mp3_(*platform.Mp3Player), wav_(*platform.MMControl1)
    {
        mp3_.onCall = [this](const Text& call) { mp3Hears(call); };
        mp3_.isPlaying = [this] { return mp3Plays ? std::int16_t{1} : std::int16_t{0}; };
        wav_.onCall = [this](const Text& call) { wavHears(call); };
    }

    std::set<Text> absent; // files that the MP3 engine cannot open now

    // The path that an engine has open; "" for none. A pause counts as playing.
    Text mp3File, wavFile;
    bool mp3Plays = false, mp3Paused = false, wavPlays = false;

    // The MP3 track comes to its end, if one is heard.
    void trackEnds()
    {
        if (!mp3Paused)
            mp3Plays = false;
    }

private:
    static Text pathIn(const Text& call) { return call.substr(5, call.size() - 6); }

    void mp3Hears(const Text& call)
    {
        if (call.starts_with("Open(")) {
            const bool found = !pathIn(call).empty() && !absent.contains(pathIn(call));
            mp3_.openResults.assign(found ? 0 : 1, 1);
            mp3File = found ? pathIn(call) : Text();
            mp3Plays = mp3Paused = false;
        } else if (call == "Play") {
            mp3Plays = !mp3File.empty();
            mp3Paused = false;
        } else if (call == "Pause") {
            mp3Paused = mp3Plays;
        } else if (call == "Stop" || call == "Close") {
            mp3Plays = mp3Paused = false;
            if (call == "Close")
                mp3File.clear();
        }
    }

    void wavHears(const Text& call)
    {
        if (call.starts_with("FileName = "))
            nextWavFile_ = call.substr(11);
        else if (call == "Open")
            wavFile = nextWavFile_;
        else if (call == "Close")
            wavFile.clear();
        wavPlays = call == "Play" ? !wavFile.empty() : wavPlays && call.starts_with("F");
    }

    RecordingMp3Play& mp3_;
    RecordingMMControl& wav_;
    Text nextWavFile_;
};

// SPDX-License-Identifier: GPL-3.0-or-later
// The program on fakes, its main window loaded, and short words for what a test asks of it.
#pragma once

#include "fakes/fake_platform.h"
#include "player/file_kind.h"
#include "player/start_up.h"
#include "playlist/play_list_editor.h"
#include "program.h"

// One call a line, so that a difference can be read.
inline Text lines(const std::vector<Text>& calls)
{
    Text text;
    for (const auto& call : calls)
        text += call + "\n";
    return text;
}

struct Player {
    FakePlatform platform;
    Program program;
    StartUp& window;

    // `prepare` sets what the start meets.
    explicit Player(const std::function<void(FakePlatform&)>& prepare = [](FakePlatform&) {}) :
        program((giveOutputDirectory(), prepare(platform), platform)), window(program.startUp())
    {
        platform.log.clear();
    }

    PlayListEditor& list() { return program.playListEditor(); }
    RecordingMp3Play& mp3() { return *platform.Mp3Player; }
    RecordingMMControl& wav() { return *platform.MMControl1; }
    ScriptedDialog& dialog() { return *platform.OpenSaveDialog1; }

    // A current file without its having been opened.
    void current(const Text& path, std::int16_t fileKind)
    {
        window.mp3filename.setCaption(path);
        dialog().filterIndex = fileKind;
    }

    // The next dialog is accepted with that file.
    void choose(const Text& path, std::int16_t filterIndex) { dialog().choices = {{{path}, filterIndex}}; }

    // All calls since the last time.
    Text calls()
    {
        const Text all = lines(platform.log.all());
        platform.log.clear();
        return all;
    }

    // One that a directory list can really stand on.
    void giveOutputDirectory()
    {
        platform.outputDirectory = "/";
        platform.scan.folders["/*.*"] = {{FoundFile::directory, "."}};
    }

    Text stored(const Text& section, const Text& key) { return platform.store.values[{section, key}]; }
    void store(const Text& section, const Text& key, const Text& value)
    {
        platform.store.values[{section, key}] = value;
    }
};

// SPDX-License-Identifier: GPL-3.0-or-later
// The program on the parts that its ticks ask: real engines, files and settings in a folder of their own.
// Dialogs, drives and the desktop are scripted.
#pragma once

#include "desktop/sqlite_store.h"
#include "fakes/fake_platform.h"
#include "files/disk_profile_file.h"
#include "files/disk_text_files.h"
#include "player/start_up.h"
#include "playlist/play_list_editor.h"
#include "support/no_sound.h"
#include "support/sound_files.h"
#include "support/sound_parts.h"

#include <filesystem>

class RealParts final : public FakePlatform
{
public:
    RealParts()
    {
        folder = place / "app";
        std::filesystem::create_directory(folder);
        putFile(folder + "/conf.mp3", mp3Bytes(noise(44100)));
        scan.folders[folder + "/*.*"] = scan.folders["/app/*.*"];
    }

    std::unique_ptr<Mp3Play> makeMp3Play() override
    {
        return audio::makeMpg123Play(output_, toolkit().post(), recordingShell, NoPartNotes::instance(),
                                     unopened_);
    }
    KeyValueStore& keyValueStore() override { return store_; }
    TextFiles& textFiles() override { return textFiles_; }
    ProfileFile& profileFile() override { return profileFile_; }

    TemporaryFolder place;

private:
    NoSound noSound_;
    audio::SoundOutput output_{place / "levels", toolkit().activity()};
    audio::UnopenedFiles unopened_{recordingShell};
    desktop::SqliteStore store_{place / "settings.sqlite"};
    files::DiskTextFiles textFiles_{NoPartNotes::instance()};
    files::DiskProfileFile profileFile_{textFiles_};
};

// What falls due together, again and again.
inline void tick(StartUp& player, PlayListEditor& list)
{
    player.Timer_Timer();
    player.vslider_tim1_Timer();
    player.balbar_tim1_Timer();
    player.posbar_tim1_Timer();
    list.Timer1_Timer();
}

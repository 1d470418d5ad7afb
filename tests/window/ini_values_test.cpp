// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/disk_profile_file.h"
#include "files/disk_text_files.h"
#include "platform/part_notes.h"
#include "support/files.h"
#include "support/player.h"
#include "support/temporary_folder.h"

#include <cstring>
#include <doctest/doctest.h>
#include <filesystem>

namespace
{

const Text file = "/app/vlmset.ini";
const Text listSection = "Playlist Editor";

struct Values : Player {
    Text read(const Text& key, const Text& fallback)
    {
        return window.GetFromINI(listSection, key, fallback, file);
    }
    Text& held(const Text& key) { return platform.profile.values[file + "|" + listSection + "|" + key]; }
    bool holds(const Text& key) const
    {
        return platform.profile.values.contains(file + "|" + listSection + "|" + key);
    }
};

// Fakes, but for the profile, which stands on the disk.
class ProfileOnDisk final : public FakePlatform
{
public:
    ProfileFile& profileFile() override { return onDisk_; }

private:
    files::DiskTextFiles files_{NoPartNotes::instance()};
    files::DiskProfileFile onDisk_{files_};
};

}

TEST_CASE("A missing value gives its default and plants it in the file")
{
    Values p;
    CHECK(p.read("FileType", "1") == "1");
    CHECK(p.calls() == "Profile.read FileType\nProfile.write FileType = 1\n");
    CHECK(p.held("FileType") == "1");
    CHECK(p.read("FileType", "2") == "1");
    CHECK(p.calls() == "Profile.read FileType\n");
}

TEST_CASE("A missing value without a default leaves no trace")
{
    Values p;
    CHECK(p.read("PlayList", "").empty());
    CHECK(p.calls() == "Profile.read PlayList\n");
    CHECK_FALSE(p.holds("PlayList"));
}

TEST_CASE("On a first run the mere reading of a value makes the file, and a start alone does not")
{
    const TemporaryFolder folder;
    const Text path = folder / "vlmset.ini";
    ProfileOnDisk platform;
    platform.folder = folder.path();
    Program program(platform);
    StartUp& window = program.startUp();
    CHECK(window.GetFromINI(listSection, "PlayList", "", path).empty());
    CHECK_FALSE(std::filesystem::exists(path));
    CHECK(window.GetFromINI(listSection, "FileType", "1", path) == "1");
    CHECK(fileBytes(path) == "[Playlist Editor]\r\nFileType=1\r\n");
}

TEST_CASE("An empty value is a missing one, its default planted over it")
{
    Values p;
    p.held("FileType") = "";
    CHECK(p.read("FileType", "1") == "1");
    CHECK(p.held("FileType") == "1");
}

TEST_CASE("A value is cut to what its reader takes: 254 characters")
{
    for (const std::size_t length : {253U, 254U, 255U, 400U}) {
        CAPTURE(length);
        Values p;
        p.held("PlayList") = Text(length, 'x');
        CHECK(p.read("PlayList", "").size() == std::min<std::size_t>(length, 254));
        CHECK(p.held("PlayList").size() == length);
    }
    for (const char* character : {"\u0416", "\u3042", "\U0001F3B5", "\xE9"}) {
        CAPTURE(character);
        Values p;
        Text& held = p.held("PlayList");
        for (int n = 0; n < 300; ++n)
            held += character;
        CHECK(p.read("PlayList", "") == held.substr(0, 254 * std::strlen(character)));
    }
}

TEST_CASE("On a read-only place the default keeps coming, without a word")
{
    Values p;
    p.platform.profile.readOnly = true;
    CHECK(p.read("FileType", "1") == "1");
    CHECK(p.read("FileType", "1") == "1");
    CHECK_FALSE(p.holds("FileType"));
    CHECK_FALSE(p.window.AddToINI(listSection, "FileType", "2", file));
    CHECK(p.platform.boxes.shown.empty());
}

TEST_CASE("A write says whether it succeeded and leaves its arguments alone")
{
    Values p;
    const Text key = "PlayList";
    const Text value = "/m/a list.vlp";
    CHECK(p.window.AddToINI(listSection, key, value, file));
    CHECK(p.held("PlayList") == value);
    CHECK(p.read("PlayList", "") == value);
}

TEST_CASE("A path keeps its bytes on the way through the file")
{
    Values p;
    const Text path = "/m/caf\xE9 = [x];.vlp";
    p.window.AddToINI(listSection, "PlayList", path, file);
    CHECK(p.read("PlayList", "") == path);
}

TEST_CASE("A section that is not marked as saved is not read, whatever else it holds")
{
    for (const Text mark : {"", "YES", "Yes", "1", "yes "}) {
        CAPTURE(mark);
        Player p;
        for (const Text name :
             {"Encoder Settings", "Decoder Settings", "CD => WAV Settings", "WAV => CD Settings"}) {
            p.store(name, "Settings Saved", mark);
            p.store(name, "Bitrate", "320000");
            p.store(name, "SaveDirectory", "/elsewhere");
            p.store(name, "FileNames", "Mine");
            p.store(name, "Write Speed", "8");
        }
        p.platform.store.reads.clear();
        p.window.get_all_settings();
        for (const auto& read : p.platform.store.reads) {
            CAPTURE(read);
            CHECK((read.ends_with("/Settings Saved") || read.ends_with("CD Writer Yes/No")));
        }
        CHECK(p.platform.log.count("Mp3Encoder1.Bitrate = 320000") == 0);
    }
}

TEST_CASE("All values of the store stand under these names")
{
    CHECK(Text(section::encoder) == "Encoder Settings");
    CHECK(Text(section::decoder) == "Decoder Settings");
    CHECK(Text(section::cdToWav) == "CD => WAV Settings");
    CHECK(Text(section::wavToCd) == "WAV => CD Settings");
    CHECK(Text(section::mainWindowPlace) == "Position StartUp Window");
    CHECK(Text(section::playListPlace) == "Position PlayList Editor");
    CHECK(Text(section::general) == "General Settings");
    const std::pair<Text, Text> keys[] = {
        {key::settingsSaved, "Settings Saved"},
        {key::left, "Left"},
        {key::top, "Top"},
        {key::shown, "SHOWN"},
        {key::dockSide, "POS"},
        {key::fileType, "FileType"},
        {key::bitrate, "Bitrate"},
        {key::sampleFrequency, "Sample Frequency"},
        {key::saveDrive, "SaveDrive"},
        {key::saveDirectory, "SaveDirectory"},
        {key::cdDrive, "CD Drive"},
        {key::fileNames, "FileNames"},
        {key::accessCddb, "Access CDDB"},
        {key::selectedWriter, "Selected CD Writer"},
        {key::writeSpeed, "Write Speed"},
        {key::closeDisc, "Close Disc"},
        {key::simulateWriting, "Simulate Writing"},
        {key::autoEject, "Auto Eject"},
        {key::writerType, "CD Writer Type"},
        {key::hasWriter, "CD Writer Yes/No"},
    };
    for (const auto& [kept, name] : keys)
        CHECK(kept == name);
}

TEST_CASE("Every value is asked for and kept under the program's own name")
{
    struct NamedStore final : KeyValueStore {
        Text applications;
        Text GetSetting(const Text& application, const Text&, const Text&) override
        {
            applications += application + " ";
            return "";
        }
        void SaveSetting(const Text& application, const Text&, const Text&, const Text&) override
        {
            applications += application + " ";
        }
    };
    NamedStore kept;
    SettingsStore store(kept);
    store.GetSetting("General Settings", "FileType");
    store.SaveSetting("General Settings", "FileType", "1");
    CHECK(kept.applications == "Velmora Velmora ");
}

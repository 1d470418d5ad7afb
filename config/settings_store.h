// SPDX-License-Identifier: GPL-3.0-or-later
// What the program remembers between runs: the names under which it is kept.
#pragma once

#include "platform/key_value_store.h"

// The program's own part of the per-user store. An absent key and one that holds "" are the same thing.
// Nothing is cached: each read asks the store, each write is kept when it returns.
class SettingsStore
{
public:
    explicit SettingsStore(KeyValueStore& store) : store_(store) {}

    Text GetSetting(const Text& section, const Text& key) const
    {
        return store_.GetSetting(application, section, key);
    }

    void SaveSetting(const Text& section, const Text& key, const Text& value)
    {
        store_.SaveSetting(application, section, key, value);
    }

private:
    static constexpr const char* application = "Velmora";

    KeyValueStore& store_;
};

namespace section
{
inline constexpr const char* encoder = "Encoder Settings";
inline constexpr const char* decoder = "Decoder Settings";
inline constexpr const char* cdToWav = "CD => WAV Settings";
inline constexpr const char* wavToCd = "WAV => CD Settings";
inline constexpr const char* mainWindowPlace = "Position StartUp Window";
inline constexpr const char* playListPlace = "Position PlayList Editor";
inline constexpr const char* general = "General Settings";
}

namespace key
{
inline constexpr const char* settingsSaved = "Settings Saved";
inline constexpr const char* left = "Left";
inline constexpr const char* top = "Top";
inline constexpr const char* shown = "SHOWN";
inline constexpr const char* dockSide = "POS";
inline constexpr const char* fileType = "FileType";
inline constexpr const char* bitrate = "Bitrate";
inline constexpr const char* sampleFrequency = "Sample Frequency";
inline constexpr const char* saveDrive = "SaveDrive";
inline constexpr const char* saveDirectory = "SaveDirectory";
inline constexpr const char* cdDrive = "CD Drive";
inline constexpr const char* fileNames = "FileNames";
inline constexpr const char* accessCddb = "Access CDDB";
inline constexpr const char* selectedWriter = "Selected CD Writer";
inline constexpr const char* writeSpeed = "Write Speed";
inline constexpr const char* closeDisc = "Close Disc";
inline constexpr const char* simulateWriting = "Simulate Writing";
inline constexpr const char* autoEject = "Auto Eject";
inline constexpr const char* writerType = "CD Writer Type";
inline constexpr const char* hasWriter = "CD Writer Yes/No";
}

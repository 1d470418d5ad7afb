// SPDX-License-Identifier: GPL-3.0-or-later
// The program on fakes with its workbench and its settings dialog loaded. The question after a writer has
// been answered with No long ago.
#pragma once

#include "settingsdlg/settings.h"
#include "support/player.h"
#include "workbench/mp3_encoder.h"

struct Workshop : Player {
    Settings& settings;
    Mp3Encoder& workbench;

    explicit Workshop(const std::function<void(FakePlatform&)>& prepare = [](FakePlatform&) {}) :
        Player([&](FakePlatform& fakes) {
            fakes.store.values[{section::wavToCd, key::hasWriter}] = "no";
            prepare(fakes);
        }),
        settings(program.settings()), workbench(program.mp3Encoder())
    {
        platform.log.clear();
        platform.boxes.shown.clear();
    }

    RecordingMp3Enc& encoder() { return *platform.Mp3Encoder1; }
    RecordingMp3Play& decoder() { return *platform.Mp3Decoder; }

    // The next load takes the section's values from the store.
    void save(const Text& where, const std::map<Text, Text>& values)
    {
        store(where, key::settingsSaved, "yes");
        for (const auto& [name, value] : values)
            store(where, name, value);
    }

    // The next load: everything that it asked of the store, the engines and the user.
    Text load()
    {
        calls();
        platform.store.reads.clear();
        platform.boxes.shown.clear();
        window.get_all_settings();
        return calls();
    }

    // Only the calls of one fake, without its name.
    Text callsOf(const Text& name)
    {
        Text text;
        for (const auto& call : platform.log.of(name))
            text += call.substr(name.size() + 1) + "\n";
        platform.log.clear();
        return text;
    }

    void setApplyButtons(bool enabled)
    {
        for (int tab = 0; tab < 4; ++tab)
            settings.applyButton(tab).setEnabled(enabled);
    }

    // A digit a tab, in order: 1 for an Apply button that is enabled.
    Text applyButtons()
    {
        Text text;
        for (int tab = 0; tab < 4; ++tab)
            text += settings.applyButton(tab).Enabled() ? "1" : "0";
        return text;
    }
};

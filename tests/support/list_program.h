// SPDX-License-Identifier: GPL-3.0-or-later
// The program on fakes with its playlist window at hand.
#pragma once

#include "fakes/fake_platform.h"
#include "player/start_up.h"
#include "playlist/play_list_editor.h"
#include "program.h"

struct ListProgram {
    // `prepare` sets up what the program finds when it starts.
    explicit ListProgram(const std::function<void(FakePlatform&)>& prepare = [](FakePlatform&) {}) :
        program((prepare(platform), platform)), player(program.startUp()), list(program.playListEditor())
    {
        platform.log.clear();
    }

    // Another start of the program, with the files and the settings that `before` left.
    static ListProgram after(const ListProgram& before)
    {
        return ListProgram([&](FakePlatform& platform) {
            platform.files.files = before.platform.files.files;
            platform.profile.values = before.platform.profile.values;
        });
    }

    void fill(const std::vector<Text>& rows)
    {
        list.PlayListLB.Clear();
        for (const auto& row : rows)
            list.PlayListLB.AddItem(row);
    }

    std::vector<Text> rows() const
    {
        std::vector<Text> rows;
        for (std::int32_t row = 0; row < list.PlayListLB.ListCount(); ++row)
            rows.push_back(list.PlayListLB.List(row));
        return rows;
    }

    // What the user chooses in the next dialog of the playlist window.
    void willChoose(const std::vector<Text>& paths, std::int16_t filter = 0)
    {
        platform.OpenSaveDialogP->choices.push_back({paths, filter});
    }

    Text& file(const Text& path) { return platform.files.files[path]; }
    Text& setting(const Text& key)
    {
        return platform.profile.values["/app/vlmset.ini|Playlist Editor|" + key];
    }

    FakePlatform platform;
    Program program;
    StartUp& player;
    PlayListEditor& list;
};

// True when the call waits on after the last step of the pump's script.
template <typename Call>
bool waitsForEver(Call&& call)
{
    try {
        call();
        return false;
    } catch (const StillWaiting&) {
        return true;
    }
}

// True when the call brings the window thread to a stand.
template <typename Call>
bool standsStill(Call&& call)
{
    try {
        call();
        return false;
    } catch (const StandsStill&) {
        return true;
    }
}

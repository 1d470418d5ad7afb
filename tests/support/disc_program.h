// SPDX-License-Identifier: GPL-3.0-or-later
// The program on fakes with its workbench and its settings loaded, and short words for discs.
#pragma once

#include "info/error.h"
#include "settingsdlg/settings.h"
#include "support/player.h"
#include "workbench/mp3_encoder.h"

#include <optional>

inline const Text cdToWav = "CD => WAV Settings";
inline const Text wavToCd = "WAV => CD Settings";

inline std::vector<Text> rowsOf(const ctl::ListBox& list)
{
    std::vector<Text> rows;
    for (std::int32_t row = 0; row < list.ListCount(); ++row)
        rows.push_back(list.List(row));
    return rows;
}

struct DiscProgram : Player {
    Mp3Encoder& workbench;
    Settings& settings;

    explicit DiscProgram(const std::function<void(FakePlatform&)>& prepare = [](FakePlatform&) {}) :
        Player(prepare), workbench(program.mp3Encoder()), settings(program.settings())
    {
        platform.log.clear();
        platform.boxes.shown.clear();
    }

    RecordingACD& reader() { return *platform.CDtoWAV; }
    RecordingCdBase& titles() { return *platform.CdBase1; }
    RecordingACDWRITE& writer() { return *platform.CDWriter; }

    // Another disc lies in the reader, and the workbench shows it.
    void list(const std::vector<std::int32_t>& milliseconds)
    {
        reader().tracks = milliseconds;
        settings.get_tracks_fsd();
        platform.log.clear();
    }

    std::vector<Text> tracks() { return rowsOf(workbench.TracksList); }

    void check(std::initializer_list<std::int32_t> rows)
    {
        for (const auto row : rows)
            workbench.TracksList.setSelected(row, true);
    }

    // What the message window says, and nothing when it is not shown.
    std::optional<Text> message()
    {
        Error& shown = program.error();
        return shown.Visible() ? std::optional(shown.theerror.Caption()) : std::nullopt;
    }

    // The next call that begins so fails, and each one after it.
    void fails(const Text& call, int number = 68)
    {
        platform.log.onCall = [call, number](const Text& made) {
            if (made.starts_with(call))
                throw Failure(Trouble(number));
        };
    }
};

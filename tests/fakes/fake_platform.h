// SPDX-License-Identifier: GPL-3.0-or-later
// The whole program on fakes. Each engine, dialog and menu can be reached by the name that its window has for
// it.
#pragma once

#include "fakes/recording_engines.h"
#include "fakes/scripted_services.h"
#include "platform/platform.h"
#include "toolkit/toolkit.h"

class FakePlatform : public Platform
{
public:
    CallLog log;
    ScriptedPump scriptedPump{log};
    ScriptedMessageBoxes boxes{log};
    StoreInMemory store{log};
    ProfileInMemory profile{log};
    ScriptedScan scan{log};
    FilesInMemory files{log};
    ScriptedDrives scriptedDrives;
    ScriptedRegistry scriptedRegistry;
    RecordingShell recordingShell;
    Text folder = "/app";
    Text outputDirectory = "/music";
    Text sign = ".";
    Text identity = "user@host";
    int ends = 0;

    // Null until their window is touched.
    RecordingMp3Play* Mp3Player = nullptr;
    RecordingMp3Play* Mp3Player2 = nullptr;
    RecordingMp3Play* Mp3Decoder = nullptr;
    RecordingMMControl* MMControl1 = nullptr;
    ScriptedDialog* OpenSaveDialog1 = nullptr;
    ScriptedDialog* OpenSaveDialogP = nullptr;
    ScriptedMenu* mainMenu = nullptr;
    ScriptedMenu* listMenu = nullptr;
    RecordingMp3Enc* Mp3Encoder1 = nullptr;
    RecordingACD* CDtoWAV = nullptr;
    RecordingACDWRITE* CDWriter = nullptr;
    RecordingCdBase* CdBase1 = nullptr;
    RecordingRemote* remote = nullptr;

    // Before the windows are made, so that their engines begin with the switches that a test needs.
    std::function<void(RecordingMp3Play&, const Text&)> onMp3Play;
    std::function<void(RecordingACD&)> onACD;
    std::function<void(RecordingACDWRITE&)> onACDWRITE;
    std::function<void(RecordingCdBase&)> onCdBase;
    std::function<std::unique_ptr<ACD>()> otherReader;    // in place of the recording one
    std::function<std::unique_ptr<CdBase>()> otherTitles; // likewise

    FakePlatform();
    ~FakePlatform() override;

    void addConfigurationFile()
    {
        scan.folders["/app/*.*"] = {
            {FoundFile::directory, "."}, {FoundFile::directory, ".."}, {FoundFile::archive, "conf.mp3"}};
        scan.folders["/music/*.*"] = {{FoundFile::directory, "."}, {FoundFile::directory, ".."}};
    }

    Toolkit& toolkit() override { return toolkit_; }
    std::unique_ptr<Mp3Play> makeMp3Play() override
    {
        RecordingMp3Play** const places[] = {&Mp3Player, &Mp3Player2, &Mp3Decoder};
        const Text names[] = {"Mp3Player", "Mp3Player2", "Mp3Decoder"};
        auto engine = std::make_unique<RecordingMp3Play>(log, names[madeEngines_]);
        if (onMp3Play)
            onMp3Play(*engine, names[madeEngines_]);
        *places[madeEngines_++] = engine.get();
        return engine;
    }
    std::unique_ptr<MMControl> makeMMControl() override { return made(MMControl1, log); }
    std::unique_ptr<OpenSaveDialog> makeOpenSaveDialog() override
    {
        return OpenSaveDialog1 ? made(OpenSaveDialogP, log, "OpenSaveDialogP")
                               : made(OpenSaveDialog1, log, "OpenSaveDialog1");
    }
    std::unique_ptr<PopupMenu> makePopupMenu() override
    {
        return mainMenu ? made(listMenu, log, "listMenu") : made(mainMenu, log, "mainMenu");
    }
    std::unique_ptr<Mp3Enc> makeMp3Enc() override { return made(Mp3Encoder1, log); }
    std::unique_ptr<ACD> makeACD() override
    {
        if (otherReader)
            return otherReader();
        auto reader = made(CDtoWAV, log);
        if (onACD)
            onACD(*reader);
        return reader;
    }
    std::unique_ptr<ACDWRITE> makeACDWRITE() override
    {
        auto writer = made(CDWriter, log);
        if (onACDWRITE)
            onACDWRITE(*writer);
        return writer;
    }
    std::unique_ptr<CdBase> makeCdBase() override
    {
        if (otherTitles)
            return otherTitles();
        auto titles = made(CdBase1, log);
        if (onCdBase)
            onCdBase(*titles);
        return titles;
    }
    std::unique_ptr<MediaRemote> makeMediaRemote() override { return made(remote); }
    KeyValueStore& keyValueStore() override { return store; }
    ProfileFile& profileFile() override { return profile; }
    DirectoryScan& directoryScan() override { return scan; }
    TextFiles& textFiles() override { return files; }
    Drives& drives() override { return scriptedDrives; }
    Registry& registry() override { return scriptedRegistry; }
    Shell& shell() override { return recordingShell; }
    MessageBoxes& messageBoxes() override { return boxes; }
    Pump& pump() override { return scriptedPump; }
    Text applicationFolder() const override { return folder; }
    Text defaultOutputDirectory() const override { return outputDirectory; }
    Text decimalSign() const override { return sign; }
    Text contactIdentity() const override { return identity; }
    void endProgram() override { ++ends; }

private:
    template <typename Fake, typename... Args>
    std::unique_ptr<Fake> made(Fake*& place, Args&&... args)
    {
        auto fake = std::make_unique<Fake>(std::forward<Args>(args)...);
        place = fake.get();
        return fake;
    }

    Toolkit toolkit_{Toolkit::Timers::byHand};
    std::size_t madeEngines_ = 0;
};

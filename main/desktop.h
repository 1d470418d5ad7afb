// SPDX-License-Identifier: GPL-3.0-or-later
// The real parts of the program, chosen in one place.
#pragma once

#include "platform/event.h"
#include "platform/platform.h"

#include <functional>
#include <memory>
#include <sys/resource.h>

class Desktop final : public Platform
{
public:
    // `program` is the name under which this one was started. Programs that it starts get back the stack
    // limit.
    Desktop(char* program, const rlimit& stackLimit);
    ~Desktop() override;

    Event<> SecondStart; // the user has started the program once more: it is this one that is wanted

    // Runs `start`, then the window events. Returns the process's exit status.
    int run(const std::function<void()>& start);

    Toolkit& toolkit() override;
    std::unique_ptr<Mp3Play> makeMp3Play() override;
    std::unique_ptr<MMControl> makeMMControl() override;
    std::unique_ptr<OpenSaveDialog> makeOpenSaveDialog() override;
    std::unique_ptr<PopupMenu> makePopupMenu() override;
    std::unique_ptr<Mp3Enc> makeMp3Enc() override;
    std::unique_ptr<ACD> makeACD() override;
    std::unique_ptr<ACDWRITE> makeACDWRITE() override;
    std::unique_ptr<CdBase> makeCdBase() override;
    std::unique_ptr<MediaRemote> makeMediaRemote() override;
    KeyValueStore& keyValueStore() override;
    ProfileFile& profileFile() override;
    DirectoryScan& directoryScan() override;
    TextFiles& textFiles() override;
    Drives& drives() override;
    Registry& registry() override;
    Shell& shell() override;
    MessageBoxes& messageBoxes() override;
    Pump& pump() override;
    Text applicationFolder() const override;
    Text defaultOutputDirectory() const override;
    Text decimalSign() const override;
    Text contactIdentity() const override;
    void endProgram() override;

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

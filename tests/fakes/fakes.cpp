// SPDX-License-Identifier: GPL-3.0-or-later
// What every test that holds a fake would compile again, if it stood in the headers.
#include "fakes/fake_platform.h"

FakePlatform::FakePlatform() { addConfigurationFile(); }
FakePlatform::~FakePlatform() = default;

RecordingMp3Play::~RecordingMp3Play() = default;
RecordingMMControl::~RecordingMMControl() = default;
RecordingMp3Enc::~RecordingMp3Enc() = default;
RecordingACD::~RecordingACD() = default;
RecordingACDWRITE::~RecordingACDWRITE() = default;
RecordingCdBase::~RecordingCdBase() = default;
RecordingRemote::~RecordingRemote() = default;
ScriptedPump::~ScriptedPump() = default;
ScriptedMessageBoxes::~ScriptedMessageBoxes() = default;
ScriptedDialog::~ScriptedDialog() = default;
ScriptedMenu::~ScriptedMenu() = default;
StoreInMemory::~StoreInMemory() = default;
ProfileInMemory::~ProfileInMemory() = default;
ScriptedScan::~ScriptedScan() = default;
FilesInMemory::~FilesInMemory() = default;
ScriptedDrives::~ScriptedDrives() = default;
ScriptedRegistry::~ScriptedRegistry() = default;
RecordingShell::~RecordingShell() = default;

// SPDX-License-Identifier: GPL-3.0-or-later
#include "program.h"

#include "info/about_frame.h"
#include "info/edit_file_info_form.h"
#include "info/error.h"
#include "platform/message_boxes.h"
#include "platform/numbers.h"
#include "platform/shell.h"
#include "player/remote_control.h"
#include "player/start_up.h"
#include "playlist/play_list_editor.h"
#include "settingsdlg/settings.h"
#include "toolkit/toolkit.h"
#include "workbench/mp3_encoder.h"

Program::Program(Platform& platform) : platform_(platform), settingsStore_(platform.keyValueStore()) {}

Program::~Program() = default;

void Program::start()
{
    startUp().Show();
    remoteControl_ = std::make_unique<RemoteControl>(*this);
}

void Program::raise()
{
    if (!remoteControl_)
        return tellOfWaiting();
    startUp().comeWithinReach();
    startUp().Show();
}

// The start waits for the levels of a file that does not open, and may have no window to show.
void Program::tellOfWaiting()
{
    platform_.shell().notify("Velmora is still starting",
                             startUp().conf_path + " cannot be opened. Velmora waits until it can: "
                                                   "put an undamaged one in its place.");
}

template <typename Window>
Window& Program::touched(std::unique_ptr<Window>& window)
{
    if (!window) {
        window = std::make_unique<Window>(*this);
        window->Load.raise();
    }
    return *window;
}

StartUp& Program::startUp() { return touched(startUp_); }

PlayListEditor& Program::playListEditor() { return touched(playListEditor_); }

Mp3Encoder& Program::mp3Encoder() { return touched(mp3Encoder_); }

Settings& Program::settings() { return touched(settings_); }

editfileinfoform& Program::editFileInfoForm() { return touched(editFileInfoForm_); }

AboutFrame& Program::aboutFrame() { return touched(aboutFrame_); }

Error& Program::error() { return touched(error_); }

// A second click may have been on its way to a window that is gone by now.
void Program::unloadAboutFrame(const AboutFrame& window)
{
    if (&window != aboutFrame_.get())
        return;
    aboutFrame_->Hide();
    std::shared_ptr<AboutFrame> leaving = std::move(aboutFrame_);
    platform_.toolkit().post().post([leaving] {});
}

void Program::tell(const Text& message)
{
    error().theerror.setCaption(message);
    error().Show();
}

bool Program::reporting(const std::function<void()>& steps)
{
    return guarded(
        [this](const Failure& failure) {
            platform_.messageBoxes().show(failure.description, "Error " + textOf(failure.number),
                                          MessageBoxes::Icon::critical, MessageBoxes::Buttons::ok);
        },
        steps);
}

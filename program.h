// SPDX-License-Identifier: GPL-3.0-or-later
// Everything that exists once: the windows, each made on first touch and kept, and what they need from
// outside.
#pragma once

#include "config/settings_store.h"
#include "platform/platform.h"

#include <functional>
#include <memory>

class AboutFrame;
class Error;
class Mp3Encoder;
class PlayListEditor;
class RemoteControl;
class Settings;
class StartUp;
class editfileinfoform;

class Program
{
public:
    explicit Program(Platform& platform);
    ~Program();

    // Loading the main window is starting the program.
    void start();

    // The user looks for the main window. While the program is still starting, there is none.
    void raise();

    // A window's load runs at its first touch, when the window is registered already: what the load touches
    // finds it.
    StartUp& startUp();
    PlayListEditor& playListEditor();
    Mp3Encoder& mp3Encoder();
    Settings& settings();
    editfileinfoform& editFileInfoForm();
    AboutFrame& aboutFrame();
    Error& error();

    // The window that is built anew at each opening: it goes when the handler that asks for this has
    // returned.
    void unloadAboutFrame(const AboutFrame& window);

    Platform& platform() const { return platform_; }
    SettingsStore& settingsStore() { return settingsStore_; }

    // The common message window with that text, without modality.
    void tell(const Text& message);

    // True when `steps` ran to their end. The first failure abandons the rest and is shown in a box.
    bool reporting(const std::function<void()>& steps);

private:
    void tellOfWaiting();
    template <typename Window>
    Window& touched(std::unique_ptr<Window>& window);

    Platform& platform_;
    SettingsStore settingsStore_;
    std::unique_ptr<StartUp> startUp_;
    std::unique_ptr<PlayListEditor> playListEditor_;
    std::unique_ptr<Mp3Encoder> mp3Encoder_;
    std::unique_ptr<Settings> settings_;
    std::unique_ptr<editfileinfoform> editFileInfoForm_;
    std::unique_ptr<AboutFrame> aboutFrame_;
    std::unique_ptr<Error> error_;
    std::unique_ptr<RemoteControl> remoteControl_;
};

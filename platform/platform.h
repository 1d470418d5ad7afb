// SPDX-License-Identifier: GPL-3.0-or-later
// Everything the program needs from outside, in one place. The real parts are chosen where this is
// implemented, a test's own where it likes.
#pragma once

#include "platform/text.h"

#include <memory>

class ACD;
class ACDWRITE;
class CdBase;
class DirectoryScan;
class Drives;
class KeyValueStore;
class MediaRemote;
class MessageBoxes;
class MMControl;
class Mp3Enc;
class Mp3Play;
class OpenSaveDialog;
class PopupMenu;
class ProfileFile;
class Pump;
class Registry;
class Shell;
class TextFiles;
class Toolkit;

class Platform
{
public:
    virtual ~Platform() = default;

    virtual Toolkit& toolkit() = 0;

    // One instance for each control that asks.
    virtual std::unique_ptr<Mp3Play> makeMp3Play() = 0;
    virtual std::unique_ptr<MMControl> makeMMControl() = 0;
    virtual std::unique_ptr<OpenSaveDialog> makeOpenSaveDialog() = 0;
    virtual std::unique_ptr<PopupMenu> makePopupMenu() = 0;
    virtual std::unique_ptr<Mp3Enc> makeMp3Enc() = 0;
    virtual std::unique_ptr<ACD> makeACD() = 0;
    virtual std::unique_ptr<ACDWRITE> makeACDWRITE() = 0;
    virtual std::unique_ptr<CdBase> makeCdBase() = 0;
    virtual std::unique_ptr<MediaRemote> makeMediaRemote() = 0;

    virtual KeyValueStore& keyValueStore() = 0;
    virtual ProfileFile& profileFile() = 0;
    virtual DirectoryScan& directoryScan() = 0;
    virtual TextFiles& textFiles() = 0;
    virtual Drives& drives() = 0;
    virtual Registry& registry() = 0;
    virtual Shell& shell() = 0;
    virtual MessageBoxes& messageBoxes() = 0;
    virtual Pump& pump() = 0;

    // Where conf.mp3, updates.txt, the settings file and the list's working copy stand. No separator at the
    // end, but for a drive's root.
    virtual Text applicationFolder() const = 0;

    // The fixed directory for output that the settings begin with. It is tested and warned about, never made.
    virtual Text defaultOutputDirectory() const = 0;

    // The sign between the whole and the fraction of a number, as the user's system writes it.
    virtual Text decimalSign() const = 0;

    // The user in the form of an e-mail address, for services that ask who is calling.
    virtual Text contactIdentity() const = 0;

    // Ends the process at once, from wherever it is called: nothing is stopped, closed or saved.
    virtual void endProgram() = 0;
};

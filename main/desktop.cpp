// SPDX-License-Identifier: GPL-3.0-or-later
#include "main/desktop.h"

#include "desktop/appearance.h"
#include "desktop/crash_trace.h"
#include "desktop/desktop_shell.h"
#include "desktop/desktop_sleep_lock.h"
#include "desktop/folder_scan.h"
#include "desktop/mounted_drives.h"
#include "desktop/mpris_remote.h"
#include "desktop/only_copy.h"
#include "desktop/places.h"
#include "desktop/qt_message_boxes.h"
#include "desktop/qt_open_save_dialog.h"
#include "desktop/qt_popup_menu.h"
#include "desktop/qt_pump.h"
#include "desktop/second_start.h"
#include "desktop/sqlite_store.h"
#include "desktop/tool_registry.h"
#include "desktop/unforced_files.h"
#include "desktop/wishes_reader.h"
#include "engines/audio/mpg123_play.h"
#include "engines/audio/sndfile_control.h"
#include "engines/audio/sound_output.h"
#include "engines/audio/unopened_files.h"
#include "engines/codec/encode_jobs.h"
#include "engines/disc/curl_cd_base.h"
#include "engines/disc/discs.h"
#include "files/disk_profile_file.h"
#include "files/disk_text_files.h"
#include "files/module.h"
#include "files/patient_text_files.h"
#include "files/state_part_notes.h"
#include "platform/acd.h"
#include "platform/acd_write.h"
#include "platform/cd_base.h"
#include "platform/numbers.h"
#include "platform/paths.h"
#include "toolkit/qt_bridge.h"
#include "toolkit/skin.h"
#include "toolkit/toolkit.h"

#include <QApplication>
#include <QIcon>
#include <clocale>
#include <optional>
#include <unistd.h>

namespace
{

constexpr int failedStatus = 1;

void endProcess(int status) { _exit(status); }

}

struct Desktop::Parts {
    Parts(char* program, rlim_t stackLimit) : arguments(program), shell(environment, stackLimit)
    {
        desktop::requireDisplay();
    }

    desktop::LibraryArguments arguments;
    desktop::Environment environment = desktop::environmentOfProcess();
    const Text applicationFolder = desktop::applicationFolder(environment); // each tick asks for it
    desktop::OnlyCopy onlyCopy{environment};
    QApplication application{arguments.count(), arguments.values()};
    Toolkit toolkit{Toolkit::Timers::run};
    // A look-up of titles may outlive the rest.
    std::shared_ptr<PartNotes> partNotes =
        std::make_shared<files::StatePartNotes>(desktop::stateFolder(environment));
    std::shared_ptr<files::DiskTextFiles> ownFiles = std::make_shared<files::DiskTextFiles>(
        *partNotes,
        [this](const Text& backup) {
            shell.notify("The list begins empty",
                         "Its last rows are in " + backup + ". Open that file as a list to have them back.");
        },
        files::Trust(), [this](const Text& path) { desktop::tellUnforced(path, applicationFolder, shell); });
    files::PatientTextFiles textFiles{ownFiles};
    files::DiskProfileFile profileFile{*ownFiles};
    desktop::FolderScan directoryScan;
    desktop::SqliteStore store{joined(desktop::configFolder(environment), "settings.sqlite")};
    audio::SoundOutput sound{joined(desktop::stateFolder(environment), "levels"), toolkit.activity(),
                             *partNotes};
    desktop::DesktopShell shell;
    audio::UnopenedFiles unopened{shell};
    desktop::SecondStarts secondStarts{desktop::sessionBusAddress(environment), toolkit.post()};
    std::optional<desktop::WishesReader> wishes; // once there is something to dress
    desktop::DesktopSleepLock sleepLock{desktop::systemBusAddress(environment),
                                        desktop::sessionBusAddress(environment)};
    disc::Discs discs{{.music = desktop::musicFolder(environment), .home = desktop::homeFolder(environment)},
                      joined(desktop::cacheFolder(environment), "titles")};
    desktop::MountedDrives drives{{.home = desktop::homeFolder(environment)}};
    desktop::ToolRegistry registry{environment.searchPath};
    desktop::QtMessageBoxes messageBoxes;
    desktop::QtPump pump;
};

Desktop::Desktop(char* program, const rlimit& stackLimit)
{
    parts_ = std::make_unique<Parts>(program, stackLimit.rlim_cur);
    parts_->secondStarts.Asked.calls([this] { SecondStart.raise(); });
    files::tellTroubleOfModules([this](const Text& words) {
        parts_->toolkit.post().post([this, words] { shell().notify("A part of Velmora is missing", words); });
    });
    parts_->toolkit.skin().keepIn(desktop::cacheFolder(parts_->environment), files::buildName(),
                                  parts_->partNotes);
    desktop::dressApplication();
    QApplication::setWindowIcon(parts_->toolkit.skin().icon("picIcon"));
    parts_->wishes.emplace(desktop::sessionBusAddress(parts_->environment), parts_->toolkit.post(),
                           desktop::dressFor);
    files::removeNotedParts(desktop::stateFolder(parts_->environment));
    desktop::tellOfCrash(desktop::stateFolder(parts_->environment), shell());
    desktop::fillApplicationFolder(parts_->environment, *parts_->ownFiles);
    parts_->toolkit.unhandled = [this](const Failure& failure) {
        messageBoxes().show("Run-time error '" + textOf(failure.number) + "':\n\n" + failure.description,
                            "Velmora", MessageBoxes::Icon::critical, MessageBoxes::Buttons::ok);
        endProcess(failedStatus);
    };
}

Desktop::~Desktop() = default;

int Desktop::run(const std::function<void()>& start)
{
    parts_->toolkit.outermost(start);
    return QApplication::exec();
}

Toolkit& Desktop::toolkit() { return parts_->toolkit; }

std::unique_ptr<Mp3Play> Desktop::makeMp3Play()
{
    return audio::makeMpg123Play(parts_->sound, parts_->toolkit.post(), shell(), *parts_->partNotes,
                                 parts_->unopened, applicationFolder() + pathSeparator + "conf.mp3");
}

std::unique_ptr<Mp3Enc> Desktop::makeMp3Enc()
{
    return codec::makeEncodeJobs(parts_->toolkit.post(), shell(), *parts_->partNotes);
}

std::unique_ptr<ACD> Desktop::makeACD()
{
    return parts_->discs.makeReader(parts_->toolkit.post(), shell(), *parts_->partNotes, parts_->sleepLock);
}

std::unique_ptr<ACDWRITE> Desktop::makeACDWRITE()
{
    return parts_->discs.makeWriter(parts_->toolkit.post(), shell(), *parts_->partNotes, parts_->sleepLock);
}

std::unique_ptr<CdBase> Desktop::makeCdBase() { return parts_->discs.makeTitles(parts_->partNotes); }

std::unique_ptr<MMControl> Desktop::makeMMControl()
{
    return audio::makeSndfileControl(parts_->sound, parts_->unopened);
}

std::unique_ptr<OpenSaveDialog> Desktop::makeOpenSaveDialog()
{
    return std::make_unique<desktop::QtOpenSaveDialog>(desktop::DialogMemory(
        joined(desktop::stateFolder(parts_->environment), "dialogs"), *parts_->partNotes));
}

std::unique_ptr<PopupMenu> Desktop::makePopupMenu()
{
    return std::make_unique<desktop::QtPopupMenu>(parts_->toolkit);
}

std::unique_ptr<MediaRemote> Desktop::makeMediaRemote()
{
    return desktop::makeMprisRemote(desktop::sessionBusAddress(parts_->environment), parts_->toolkit.post());
}

KeyValueStore& Desktop::keyValueStore() { return parts_->store; }

ProfileFile& Desktop::profileFile() { return parts_->profileFile; }

DirectoryScan& Desktop::directoryScan() { return parts_->directoryScan; }

TextFiles& Desktop::textFiles() { return parts_->textFiles; }

Drives& Desktop::drives() { return parts_->drives; }

Registry& Desktop::registry() { return parts_->registry; }

Shell& Desktop::shell() { return parts_->shell; }

MessageBoxes& Desktop::messageBoxes() { return parts_->messageBoxes; }

Pump& Desktop::pump() { return parts_->pump; }

Text Desktop::applicationFolder() const { return parts_->applicationFolder; }

Text Desktop::defaultOutputDirectory() const { return desktop::musicFolder(parts_->environment); }

Text Desktop::decimalSign() const { return std::localeconv()->decimal_point; }

Text Desktop::contactIdentity() const { return Text(disc::nobody); }

void Desktop::endProgram() { endProcess(0); }

// SPDX-License-Identifier: GPL-3.0-or-later
#include "info/about_frame.h"

#include "info/registry_text.h"
#include "platform/failure.h"
#include "platform/message_boxes.h"
#include "platform/paths.h"
#include "platform/registry.h"
#include "platform/shell.h"
#include "platform/text_files.h"
#include "platform/version.h"
#include "player/start_up.h"
#include "program.h"
#include "toolkit/spoken_names.h"
#include "toolkit/toolkit.h"

namespace
{

constexpr std::uint32_t localMachine = 0x80000002;
constexpr std::uint32_t keyAccess = 0x2003F;
constexpr std::uint32_t bufferSize = 1024;

}

AboutFrame::AboutFrame(Program& program) :
    Form(program.platform().toolkit(), "AboutFrame", Border::dialog, {6000_tw, 4500_tw}), program_(program)
{
    setCaption("About Velmora");
    lblTitle.setFontSize(14);
    lblTitle.setFontBold(true);
    lblDescription.setWordWrap(true);
    lblDisclaimer.setWordWrap(true);
    updatesandbugfixes.setLocked(true);
    updatesandbugfixes.setGrey();
    // clang-format off
    ctl::setSpokenNames(*this, {
        {SSTab1, "About Velmora"},
        {updatesandbugfixes, "Updates and bug fixes"},
    });
    // clang-format on
    Load.calls(*this, &AboutFrame::Form_Load);
    cmdOK.Click.calls(*this, &AboutFrame::cmdOK_Click);
    cmdSysInfo.Click.calls(*this, &AboutFrame::cmdSysInfo_Click);
}

void AboutFrame::Form_Load()
{
    skipping([this] { setCaption("About Velmora"); },
             [this] { lblVersion.setCaption("Version " VELMORA_VERSION); },
             [this] { lblTitle.setCaption("Velmora"); }, [this] { showUpdates(); });
}

void AboutFrame::showUpdates()
{
    const Text path = program_.platform().applicationFolder() + pathSeparator + "updates.txt";
    updatesandbugfixes.setText(program_.platform().textFiles().readWhole(path));
}

void AboutFrame::cmdOK_Click() { closeRequested(); }

void AboutFrame::closeRequested() { program_.unloadAboutFrame(*this); }

void AboutFrame::cmdSysInfo_Click() { StartSysInfo(); }

void AboutFrame::StartSysInfo()
{
    if (succeeds([this] { program_.platform().shell().startProgram(systemInformationTool()); }))
        return;
    program_.platform().messageBoxes().show("System Information Is Unavailable At This Time", "",
                                            MessageBoxes::Icon::none, MessageBoxes::Buttons::ok);
}

// The full path of the tool, or of the folder in which it must stand. Fails with 53 when neither leads to it.
Text AboutFrame::systemInformationTool()
{
    Text result;
    if (GetKeyValue(localMachine, "SOFTWARE\\Microsoft\\Shared Tools\\MSINFO", "PATH", result))
        return result;
    if (!GetKeyValue(localMachine, "SOFTWARE\\Microsoft\\Shared Tools Location", "MSINFO", result))
        throw Failure(Trouble::fileNotFound);
    result += pathSeparator;
    result += "MSINFO32.EXE";
    if (!program_.startUp().FileOrDirExists(result, ""))
        throw Failure(Trouble::fileNotFound);
    return result;
}

bool AboutFrame::GetKeyValue(std::uint32_t root, const Text& keyName, const Text& valueName, Text& result)
{
    Registry& registry = program_.platform().registry();
    Registry::Key key = 0;
    std::uint32_t type = 0;
    std::uint32_t size = bufferSize;
    Text buffer(bufferSize, '\0');
    const bool read = registry.RegOpenKeyEx(root, keyName, keyAccess, key) == 0 &&
                      registry.RegQueryValueEx(key, valueName, type, buffer, size) == 0;
    if (!read)
        result.clear();
    else if (const auto text = registryText(type, buffer, size, result))
        result = *text;
    registry.RegCloseKey(key);
    return read;
}

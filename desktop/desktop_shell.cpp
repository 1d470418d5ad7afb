// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/desktop_shell.h"

#include "desktop/programs.h"
#include "files/folders.h"
#include "platform/failure.h"
#include "platform/paths.h"

#include <sys/stat.h>

#include <iterator>
#include <sstream>

namespace desktop
{

namespace
{

bool exists(const Text& path)
{
    struct stat status;
    return stat(path.c_str(), &status) == 0;
}

std::vector<Text> words(const Text& path)
{
    if (files::isFile(path))
        return {path};
    std::istringstream line(path);
    return {std::istream_iterator<Text>(line), {}};
}

}

DesktopShell::DesktopShell(const Environment& environment, std::optional<rlim_t> stackLimit) :
    searchPath_(environment.searchPath), stackLimit_(stackLimit),
    notifications_(sessionBusAddress(environment))
{
}

void DesktopShell::startProgram(const Text& path)
{
    std::vector<Text> command = words(path);
    if (command.empty() || (command[0] = programAt(searchPath_, command[0])).empty())
        throw Failure(Trouble::fileNotFound);
    if (const int error = startDetached(command, stackLimit_); error != 0)
        throw fileFailure(error);
}

void DesktopShell::notify(const Text& title, const Text& message) { notifications_.post(title, message); }

Text sessionBusAddress(const Environment& environment)
{
    if (environment.busAddress.find("autolaunch:") != Text::npos)
        return {};
    if (!environment.busAddress.empty())
        return environment.busAddress;
    const Text usual = joined(environment.runtimeFolder, "bus");
    return environment.runtimeFolder.starts_with(pathSeparator) && exists(usual) ? "unix:path=" + usual
                                                                                 : Text();
}

Text systemBusAddress(const Environment& environment)
{
    return environment.systemBus.empty() ? "unix:path=/run/dbus/system_bus_socket" : environment.systemBus;
}

}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/places.h"

#include "files/folders.h"
#include "platform/failure.h"
#include "platform/paths.h"

namespace desktop
{

namespace
{

// What was installed when the folder was filled. It tells an untouched updates.txt from the user's own, and
// its presence that the folder has been filled.
constexpr const char* record = ".installed-updates.txt";
constexpr const char* updates = "updates.txt";
constexpr const char* firstFiles[] = {"conf.mp3", updates};

Text installedFolder(const Environment& environment)
{
    return joined(files::folderOf(environment.executable), "../share/velmora");
}

bool isInstalled(const Environment& environment) { return files::isFolder(installedFolder(environment)); }

void put(TextFiles& files, const Text& path, const Text& bytes)
{
    const auto output = files.openForOutput(path);
    output->write(bytes);
    output->finish();
}

void fill(TextFiles& files, const Text& from, const Text& to)
{
    files::makeFolders(to);
    for (const char* name : firstFiles)
        if (!files::isFile(joined(to, name)))
            put(files, joined(to, name), files.readWhole(joined(from, name)));
    put(files, joined(to, record), files.readWhole(joined(from, updates)));
}

// The record follows last, so that a start that is cut short is made up for by the next one.
void refresh(TextFiles& files, const Text& from, const Text& to)
{
    const Text installed = files.readWhole(joined(from, updates));
    const Text recorded = files.readWhole(joined(to, record));
    const Text own = files.readWhole(joined(to, updates));
    if (installed == recorded || (own != recorded && own != installed))
        return;
    if (own != installed)
        put(files, joined(to, updates), installed);
    put(files, joined(to, record), installed);
}

}

Text applicationFolder(const Environment& environment)
{
    return isInstalled(environment) ? dataFolder(environment) : files::folderOf(environment.executable);
}

void fillApplicationFolder(const Environment& environment, TextFiles& files)
{
    if (!isInstalled(environment))
        return;
    const Text to = applicationFolder(environment);
    const auto bring = files::isFile(joined(to, record)) ? refresh : fill;
    succeeds([&] { bring(files, installedFolder(environment), to); });
}

}

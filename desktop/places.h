// SPDX-License-Identifier: GPL-3.0-or-later
// Where the program finds and keeps its files: the XDG rules for base and user directories.
#pragma once

#include "platform/text.h"
#include "platform/text_files.h"

namespace desktop
{

// What places and services depend on, each as the system gives it; empty for what is not set.
struct Environment {
    Text executable = {};    // full path of the running program
    Text home = {};          // HOME
    Text accountHome = {};   // the home folder in the user database
    Text configHome = {};    // XDG_CONFIG_HOME
    Text dataHome = {};      // XDG_DATA_HOME
    Text stateHome = {};     // XDG_STATE_HOME
    Text cacheHome = {};     // XDG_CACHE_HOME
    Text runtimeFolder = {}; // XDG_RUNTIME_DIR
    Text searchPath = {};    // PATH
    Text busAddress = {};    // DBUS_SESSION_BUS_ADDRESS
    Text systemBus = {};     // DBUS_SYSTEM_BUS_ADDRESS
};

Environment environmentOfProcess();

// All without a separator at the end, and none is made by asking.
Text homeFolder(const Environment& environment);
Text configFolder(const Environment& environment);
Text dataFolder(const Environment& environment);
Text stateFolder(const Environment& environment);
Text cacheFolder(const Environment& environment);

// The user's own choice, or `Music` in the home folder. It need not exist.
Text musicFolder(const Environment& environment);

// The executable's folder, a portable copy's; or the data folder when the program is installed, its files
// lying in `../share/velmora`.
Text applicationFolder(const Environment& environment);

// For the program's start: an installed program's application folder gets its first files, once. Later
// only an `updates.txt` that the user left as it was follows the installed one. A file that cannot be
// copied is tried again at the next start.
void fillApplicationFolder(const Environment& environment, TextFiles& files);

}

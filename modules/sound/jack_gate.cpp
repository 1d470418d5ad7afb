// SPDX-License-Identifier: GPL-3.0-or-later
// The sound library turns to each other kind of server where the one that it is told of refuses or dies while
// it is asked, and offers no way to leave one out. The loader finds this before JACK's own, so that no client
// of JACK begins where no server of it stands; standing_server.h tells what that would do.
#include "modules/sound/standing_server.h"

#include <dlfcn.h>

// As JACK's API has it. The sound library names no server of its own behind these.
extern "C" void* jack_client_open(const char* name, int options, int* status, ...)
{
    if (!audio::jackStands())
        return nullptr;
    void* const library = dlopen("libjack.so.0", RTLD_LAZY | RTLD_NOLOAD);
    if (library == nullptr)
        return nullptr;
    const auto open = reinterpret_cast<decltype(&jack_client_open)>(dlsym(library, "jack_client_open"));
    dlclose(library); // whoever asked has it loaded
    return open == nullptr ? nullptr : open(name, options, status);
}

// SPDX-License-Identifier: GPL-3.0-or-later
// Keeps the process from every sound card and sound server that the machine may have.
#pragma once

#include "tests/support/files.h"
#include "tests/support/temporary_folder.h"

#include <cstdlib>

class NoSound
{
public:
    NoSound()
    {
        for (const char* name : {"HOME", "XDG_RUNTIME_DIR", "PULSE_RUNTIME_PATH", "PULSE_STATE_PATH"})
            setenv(name, folder_.path().c_str(), 1);
        setenv("XDG_CONFIG_HOME", (folder_ / "config").c_str(), 1);
        setenv("DBUS_SESSION_BUS_ADDRESS", "disabled:", 1);
        setenv("PULSE_SERVER", ("unix:" + pulseSocket()).c_str(), 1);
        setenv("JACK_DEFAULT_SERVER", "velmora-test", 1);
        setenv("JACK_NO_START_SERVER", "1", 1);
        setenv("AUDIODEVICE", "snd/none", 1);
        configureAlsa("");
    }

    // What the ALSA library is told that the machine has.
    void configureAlsa(const Text& configuration) const
    {
        const Text path = folder_ / "asound.conf";
        putFile(path, configuration);
        setenv("ALSA_CONFIG_PATH", path.c_str(), 1);
    }

    Text pulseSocket() const { return folder_ / "native"; }

private:
    TemporaryFolder folder_;
};

// SPDX-License-Identifier: GPL-3.0-or-later
// A bus of the test's own, on which no service is started by itself.
#pragma once

#include "tests/support/files.h"
#include "tests/support/spawned.h"
#include "tests/support/temporary_folder.h"

struct PrivateBus {
    TemporaryFolder folder;
    Text address = "unix:path=" + folder / "bus";
    Spawned daemon = start();

    Spawned start()
    {
        putFile(folder / "config",
                "<busconfig><type>session</type><listen>" + address +
                    "</listen><policy context='default'><allow send_destination='*' eavesdrop='true'/>"
                    "<allow eavesdrop='true'/><allow own='*'/></policy></busconfig>");
        return Spawned(
            {"dbus-daemon", "--nofork", "--print-address=1", "--config-file=" + folder / "config"});
    }
    bool runs() { return daemon.line().starts_with(address); }
};

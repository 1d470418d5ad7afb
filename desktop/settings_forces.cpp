// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/settings_forces.h"

#include <sqlite3.h>

namespace desktop
{

namespace
{

// A connection of its own: this one forces, while the window thread goes on writing through the other.
bool bringOver(const Text& path)
{
    sqlite3* connection = nullptr;
    int inLog = -1;
    int broughtOver = -1;
    int result =
        sqlite3_open_v2(path.c_str(), &connection, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
    if (result == SQLITE_OK)
        result = sqlite3_exec(connection, "PRAGMA synchronous = NORMAL", nullptr, nullptr, nullptr);
    if (result == SQLITE_OK)
        result =
            sqlite3_wal_checkpoint_v2(connection, nullptr, SQLITE_CHECKPOINT_PASSIVE, &inLog, &broughtOver);
    sqlite3_close(connection);
    return result == SQLITE_OK && inLog == broughtOver;
}

}

void SettingsForces::begin()
{
    if (isUnderWay())
        return;
    *state_ = ForceState::underWay;
    worker_.add([path = path_, state = state_](const std::stop_token&) {
        *state = bringOver(path) ? ForceState::ended : ForceState::idle;
    });
}

}

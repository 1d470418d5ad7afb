// SPDX-License-Identifier: GPL-3.0-or-later
// The per-user store: application, section, key, and a text value.
#pragma once

#include "platform/text.h"

class KeyValueStore
{
public:
    virtual ~KeyValueStore() = default;

    // "" for an absent key. Never fails.
    virtual Text GetSetting(const Text& application, const Text& section, const Text& key) = 0;

    // One committed change when it returns; survives a kill at any instant. Writes nothing for an equal
    // value, so that it is cheap enough for every tick. Never fails, whatever the disk does.
    virtual void SaveSetting(const Text& application, const Text& section, const Text& key,
                             const Text& value) = 0;
};

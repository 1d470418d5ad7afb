// SPDX-License-Identifier: GPL-3.0-or-later
// The read operations of the system's registry.
#pragma once

#include "platform/text.h"

#include <cstdint>

class Registry
{
public:
    using Key = std::intptr_t;

    virtual ~Registry() = default;

    // 0 and an open key, or an error number and key 0.
    virtual std::int32_t RegOpenKeyEx(std::uint32_t root, const Text& name, std::uint32_t access,
                                      Key& key) = 0;

    // 0, the value's type, its bytes from the start of `buffer` and their number; otherwise an error number.
    virtual std::int32_t RegQueryValueEx(Key key, const Text& valueName, std::uint32_t& type, Text& buffer,
                                         std::uint32_t& size) = 0;

    virtual std::int32_t RegCloseKey(Key key) = 0; // harmless for key 0
};

// SPDX-License-Identifier: GPL-3.0-or-later
// The platform's private profile files: sections in brackets, one key and value a line.
#pragma once

#include "platform/text.h"

#include <cstddef>

class ProfileFile
{
public:
    virtual ~ProfileFile() = default;

    // Puts the key's value and a closing NUL into `buffer`, cut to `size` bytes in all, and returns the
    // number of bytes before the NUL. `fallback` stands in for a missing key, section or file. Names match
    // without regard to case; the value loses blanks around it and one pair of quotes.
    virtual std::size_t read(const Text& section, const Text& key, const Text& fallback, char* buffer,
                             std::size_t size, const Text& file) = 0;

    // Replaces the file in one step, every other line kept. An equal value writes nothing. False when it
    // failed.
    virtual bool write(const Text& section, const Text& key, const Text& value, const Text& file) = 0;
};

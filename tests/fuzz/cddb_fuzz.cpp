// SPDX-License-Identifier: GPL-3.0-or-later
// A CDDB server's answers, whatever they hold.
#include "engines/disc/cddb_answer.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view answer(reinterpret_cast<const char*>(data), size);
    if (const auto matches = disc::matchesIn(answer); matches && matches->size() > 100)
        __builtin_trap();
    const auto titles = disc::titlesIn(answer);
    if (!titles)
        return 0;
    if (titles->tracks.size() > 99 || !isValidUtf8(titles->artist))
        __builtin_trap();
    for (const Text& title : titles->tracks)
        if (!isValidUtf8(title) || title.find('\n') != Text::npos)
            __builtin_trap();
    return 0;
}

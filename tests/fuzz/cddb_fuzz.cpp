// SPDX-License-Identifier: GPL-3.0-or-later
// A CDDB server's answers, whatever they hold.
#include "engines/disc/cddb_answer.h"
#include "tests/fuzz/input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view answer = asText(data, size);
    if (const auto matches = disc::matchesIn(answer))
        require(matches->size() <= 100);
    const auto titles = disc::titlesIn(answer);
    if (!titles)
        return 0;
    require(titles->tracks.size() <= 99 && isValidUtf8(titles->artist));
    for (const Text& title : titles->tracks)
        require(isValidUtf8(title) && title.find('\n') == Text::npos);
    return 0;
}

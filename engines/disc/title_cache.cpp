// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/disc/title_cache.h"

#include "engines/disc/disc_id.h"
#include "files/content.h"
#include "platform/paths.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace disc
{

namespace
{

// A file begins with the disc's own line: two discs may share an id.
Text firstLine(const DiscContents& disc) { return queryCommand(disc) + '\n'; }

bool wrote(const Text& path, const Text& bytes)
{
    std::ofstream file(path, std::ios::binary);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    file.close();
    return !file.fail();
}

}

std::optional<Text> TitleCache::answer(const DiscContents& disc) const
{
    const Text bytes = files::contentOf(joined(folder_, discId(disc)));
    const Text first = firstLine(disc);
    if (!bytes.starts_with(first))
        return std::nullopt;
    return bytes.substr(first.size());
}

// Not synced to the disk: an answer cut short shows as one, and counts for nothing.
void TitleCache::keep(const DiscContents& disc, const Text& answer) const
{
    if (this->answer(disc) == answer)
        return;
    std::error_code error;
    std::filesystem::create_directories(folder_, error);
    const Text path = joined(folder_, discId(disc));
    const Text part = path + '.' + std::to_string(getpid()) + ".part";
    if (wrote(part, firstLine(disc) + answer))
        std::filesystem::rename(part, path, error);
    else
        std::filesystem::remove(part, error);
}

}

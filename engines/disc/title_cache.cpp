// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/disc/title_cache.h"

#include "engines/disc/disc_id.h"
#include "files/folders.h"
#include "files/output_file.h"
#include "platform/complaint.h"
#include "platform/paths.h"

namespace disc
{

namespace
{

// A file begins with the disc's own line: two discs may share an id.
Text firstLine(const DiscContents& disc) { return queryCommand(disc) + '\n'; }

}

std::optional<Text> TitleCache::answer(const DiscContents& disc) const
{
    const Text bytes = files::contentOf(joined(folder_, discId(disc)));
    const Text first = firstLine(disc);
    if (!bytes.starts_with(first))
        return std::nullopt;
    return bytes.substr(first.size());
}

// On a worker, which can wait for the disk: when the power goes, the last answer is whole, or the one before.
void TitleCache::keep(const DiscContents& disc, const Text& answer) const
{
    if (this->answer(disc) == answer)
        return;
    files::makeFolders(folder_);
    Complaint("The titles of a disc cannot be kept").unless([&] {
        files::OutputFile file(joined(folder_, discId(disc)), *notes_);
        file.append(files::bytesOf(firstLine(disc) + answer));
        file.finish();
    });
}

}

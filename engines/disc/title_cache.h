// SPDX-License-Identifier: GPL-3.0-or-later
// The last answers that the CDDB gave, one file a disc, for the times when it gives none.
#pragma once

#include "engines/disc/disc_contents.h"
#include "platform/part_notes.h"
#include "platform/text.h"

#include <optional>

namespace disc
{

class TitleCache
{
public:
    // The folder is made when first needed.
    explicit TitleCache(Text folder, PartNotes& notes = NoPartNotes::instance()) :
        folder_(std::move(folder)), notes_(notes)
    {
    }

    // The answer kept for that disc. Discs of one id and different tracks are told apart.
    std::optional<Text> answer(const DiscContents& disc) const;

    // Never fails: what cannot be kept is missing when the CDDB is silent.
    void keep(const DiscContents& disc, const Text& answer) const;

private:
    Text folder_;
    PartNotes& notes_;
};

}

// SPDX-License-Identifier: GPL-3.0-or-later
// The last answers that the CDDB gave, one file a disc, for the times when it gives none.
#pragma once

#include "engines/disc/disc_contents.h"
#include "platform/part_notes.h"

#include <memory>
#include <optional>

namespace disc
{

class TitleCache
{
public:
    // The folder is made when first needed.
    explicit TitleCache(Text folder, std::shared_ptr<PartNotes> notes = std::make_shared<NoPartNotes>()) :
        folder_(std::move(folder)), notes_(std::move(notes))
    {
    }

    // The answer kept for that disc. Discs of one id and different tracks are told apart.
    std::optional<Text> answer(const DiscContents& disc) const;

    // Never fails: what cannot be kept is missing when the CDDB is silent.
    void keep(const DiscContents& disc, const Text& answer) const;

private:
    Text folder_;
    std::shared_ptr<PartNotes> notes_;
};

}

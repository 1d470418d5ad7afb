// The answers that the CDDB gave, one file a disc, so that a disc is asked for once.
#pragma once

#include "engines/disc/disc_contents.h"
#include "platform/text.h"

#include <optional>

class TitleCache
{
public:
    explicit TitleCache(Text folder) : folder_(std::move(folder)) {} // made when first needed

    // The answer kept for that disc. Discs of one id and different tracks are told apart.
    std::optional<Text> answer(const DiscContents& disc) const;

    // Never fails: what cannot be kept is asked for again.
    void keep(const DiscContents& disc, const Text& answer) const;

private:
    Text folder_;
};

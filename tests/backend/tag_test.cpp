#include "platform/tags/tag.h"

#include <doctest/doctest.h>

TEST_CASE("A tag without fields has no year and no genre")
{
    const Tag tag;
    CHECK(tag.year == 0);
    CHECK(tag.genreIndex == -1);
}

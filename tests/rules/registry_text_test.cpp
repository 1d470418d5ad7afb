// SPDX-License-Identifier: GPL-3.0-or-later
#include "info/registry_text.h"

#include "platform/failure.h"

#include <doctest/doctest.h>

namespace
{

constexpr std::uint32_t string = 1;
constexpr std::uint32_t doubleWord = 4;

// As the registry hands values over: in a larger buffer of NULs.
Text buffered(Text bytes)
{
    bytes.resize(1024, '\0');
    return bytes;
}

}

TEST_CASE("Of a string value only one closing NUL goes")
{
    struct Row {
        Text what, bytes;
        std::uint32_t size;
        Text text;
    };
    const Row rows[] = {
        {"closed", "abc", 4, "abc"},
        {"not closed", "abc", 3, "abc"},
        {"closed twice", "abc", 5, Text("abc\0", 4)},
        {"a NUL inside", Text("a\0c", 3), 3, Text("a\0c", 3)},
        {"nothing but the NUL", "", 1, ""},
        {"nothing", "", 0, ""},
        {"as long as the buffer", Text(1024, 'x'), 1024, Text(1024, 'x')},
        {"a size past the buffer", Text(1024, 'x'), 2000, Text(1024, 'x')},
    };
    for (const auto& row : rows) {
        CAPTURE(row.what);
        CHECK(registryText(string, buffered(row.bytes), row.size, "before") == row.text);
    }
}

TEST_CASE("A double word is the decimal of its digits, the highest byte first")
{
    struct Row {
        Text what, bytes, before, text;
    };
    const Row rows[] = {
        {"four bytes", "\x78\x56\x34\x12", "", "305419896"},
        {"without leading zeros in a byte", "\x01\x02\x03\x04", "", "17185"},
        {"a zero in the middle is one digit", Text("\x01\x00\x02", 3), "", "513"},
        {"behind digits that were there", "\x01", "A", "161"},
        {"high bytes are not negative", "\xFF\xFE", "", "65279"},
    };
    for (const auto& row : rows) {
        CAPTURE(row.what);
        const auto size = static_cast<std::uint32_t>(row.bytes.size());
        CHECK(registryText(doubleWord, buffered(row.bytes), size, row.before) == row.text);
    }
}

TEST_CASE("A double word that makes no number is a failure")
{
    struct Row {
        Text what, bytes, before;
        int failure;
    };
    const Row rows[] = {
        {"no bytes", "", "", 13},
        {"behind what is no digit", "\x01", "x", 13},
        {"too many bytes", Text(9, '\x11'), "", 6},
    };
    for (const auto& row : rows) {
        CAPTURE(row.what);
        int number = 0;
        guarded([&](const Failure& failure) { number = failure.number; },
                [&] {
                    registryText(doubleWord, buffered(row.bytes),
                                 static_cast<std::uint32_t>(row.bytes.size()), row.before);
                });
        CHECK(number == row.failure);
    }
}

TEST_CASE("Values of other types have no text")
{
    for (const std::uint32_t type : {0U, 2U, 3U, 5U, 7U, 11U})
        CHECK_FALSE(registryText(type, buffered("abc"), 4, "before"));
}

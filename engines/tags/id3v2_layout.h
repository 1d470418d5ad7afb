// SPDX-License-Identifier: GPL-3.0-or-later
// Where the parts of an ID3v2 tag (2.2, 2.3, 2.4) lie, without a look into them.
#pragma once

#include "files/byte_source.h"

#include <memory>
#include <optional>
#include <vector>

namespace tags
{

// A tag stays as it is, for this reason.
[[noreturn]] void refuse(const Text& reason);

struct Id3v2Header {
    Text bytes; // the ten bytes of it
    int version = 0;
    std::uint32_t size = 0; // of the body: what follows the header, without a footer
    std::uint64_t end = 0;  // where the tag ends in the file, its footer included

    bool saysScrambled() const;
    bool isScrambled() const; // unsynchronised as a whole, which 2.4 does frame by frame
    bool hasExtendedHeader() const;
    bool hasFooter() const;
};

// The header at `at`; none where no tag begins there.
std::optional<Id3v2Header> id3v2HeaderAt(files::ByteSource& file, std::uint64_t at);

struct Id3v2Frame {
    Text id;                // as ID3v2.3 names it, also in an ID3v2.2 tag
    std::uint64_t at = 0;   // in the body
    std::uint64_t size = 0; // with the frame's header
    bool readable = true;   // false: encrypted, compressed, grouped, or longer than any text
};

struct Id3v2Layout {
    Id3v2Header header;
    std::unique_ptr<files::ByteSource> body; // as it is without unsynchronisation
    bool isFaithful = true;        // false: unsynchronising the body would not give the file's bytes
    std::uint64_t framesBegin = 0; // after the extended header, where there is one
    std::uint64_t framesEnd = 0;   // where padding, or what this program cannot read, begins
    std::vector<Id3v2Frame> frames;
};

// The layout of the tag that `header` begins, with its body taken from `file`, which must outlive the result.
// Fails with words for a person where the tag's form is unknown or damaged.
Id3v2Layout id3v2Layout(files::ByteSource& file, const Id3v2Header& header);

// What the frame holds, without its header and without unsynchronisation; the frame is readable.
Text frameContent(Id3v2Layout& layout, const Id3v2Frame& frame);

// A whole frame of that version around `content`; `id` as ID3v2.3 names it.
Text makeFrame(int version, const Text& id, const Text& content);

// A body as unsynchronisation stores it: no two bytes in it look like the start of a frame.
Text unsynchronised(std::string_view body);

}

// SPDX-License-Identifier: GPL-3.0-or-later
// MP3 files made in a test: silent frames, and tags of every kind built byte by byte, by nothing that is
// tested.
#pragma once

#include "tests/support/files.h"
#include "tests/support/temporary_folder.h"

#include <vector>

// Frames of 128 kbit/s at 44.1 kHz whose bodies decode to silence; each carries its number in its last bytes,
// so that a lost or doubled frame shows.
inline Text mp3Frames(int count)
{
    Text bytes;
    for (int i = 0; i < count; ++i) {
        Text frame("\xFF\xFB\x90\x64", 4);
        frame.resize(417, '\0');
        frame[414] = static_cast<char>(i & 0x7F);
        frame[415] = static_cast<char>(i >> 7 & 0x7F);
        frame[416] = static_cast<char>(i >> 14 & 0x7F);
        bytes += frame;
    }
    return bytes;
}

inline Text bigEndian(std::size_t number, int count)
{
    Text bytes;
    for (int i = count - 1; i >= 0; --i)
        bytes += static_cast<char>(number >> (8 * i) & 0xFF);
    return bytes;
}

inline Text littleEndian(std::size_t number)
{
    Text bytes = bigEndian(number, 4);
    return {bytes.rbegin(), bytes.rend()};
}

inline Text syncSafe(std::size_t number)
{
    Text bytes;
    for (int i = 3; i >= 0; --i)
        bytes += static_cast<char>(number >> (7 * i) & 0x7F);
    return bytes;
}

// `flags`: the two bytes behind the size, from 2.3 on.
inline Text v2Frame(int version, const Text& id, const Text& content, unsigned flags = 0)
{
    if (version == 2)
        return id + bigEndian(content.size(), 3) + content;
    return id + (version == 4 ? syncSafe(content.size()) : bigEndian(content.size(), 4)) +
           bigEndian(flags, 2) + content;
}

inline Text v2Tag(int version, const Text& frames, std::size_t padding = 0, unsigned flags = 0)
{
    return Text("ID3") + static_cast<char>(version) + '\0' + static_cast<char>(flags) +
           syncSafe(frames.size() + padding) + frames + Text(padding, '\0');
}

inline Text latin1Text(const Text& bytes) { return '\0' + bytes; }
inline Text utf8Text(const Text& bytes) { return '\3' + bytes; }

inline Text utf16Text(const std::u16string& units, bool bigEndianUnits = false, bool mark = true)
{
    Text bytes;
    for (const char16_t unit : (mark ? u"\xFEFF" : u"") + units) {
        const Text pair = bigEndian(unit, 2);
        bytes += bigEndianUnits ? pair : Text{pair[1], pair[0]};
    }
    return (mark ? '\1' : '\2') + bytes;
}

inline Text v2Comment(int version, const Text& language, const Text& description, const Text& text)
{
    return v2Frame(version, version == 2 ? "COM" : "COMM", '\0' + language + description + '\0' + text);
}

inline Text field(const Text& bytes, std::size_t size)
{
    Text place = bytes.substr(0, size);
    place.resize(size, '\0');
    return place;
}

struct V1 {
    Text title = {};
    Text artist = {};
    Text album = {};
    Text year = {};
    Text comment = {};
    int track = 0; // 0: an ID3v1.0 tag
    unsigned char genre = 255;
};

inline Text v1Tag(const V1& tag)
{
    const Text comment = tag.track == 0 ? field(tag.comment, 30)
                                        : field(tag.comment, 28) + '\0' + static_cast<char>(tag.track);
    return "TAG" + field(tag.title, 30) + field(tag.artist, 30) + field(tag.album, 30) + field(tag.year, 4) +
           comment + static_cast<char>(tag.genre);
}

// The last 128 bytes, taken apart at their places.
struct V1Bytes {
    Text all, title, artist, album, year, comment;
    int genre = 0;
};

inline V1Bytes v1Of(const Text& file)
{
    V1Bytes tag;
    tag.all = file.substr(file.size() - 128);
    tag.title = tag.all.substr(3, 30);
    tag.artist = tag.all.substr(33, 30);
    tag.album = tag.all.substr(63, 30);
    tag.year = tag.all.substr(93, 4);
    tag.comment = tag.all.substr(97, 30);
    tag.genre = static_cast<unsigned char>(tag.all[127]);
    return tag;
}

inline Text apeItem(const Text& key, const Text& value, std::size_t flags = 0)
{
    return littleEndian(value.size()) + littleEndian(flags) + key + '\0' + value;
}

inline Text apeTag(const std::vector<Text>& items, bool header = true)
{
    Text all;
    for (const Text& item : items)
        all += item;
    const auto end = [&](std::size_t flags) {
        return "APETAGEX" + littleEndian(2000) + littleEndian(all.size() + 32) + littleEndian(items.size()) +
               littleEndian(flags) + Text(8, '\0');
    };
    const std::size_t hasHeader = header ? 0x80000000u : 0;
    return (header ? end(hasHeader | 0x20000000u) : "") + all + end(hasHeader);
}

// Puts a song into the folder, and gives its path.
inline Text putSong(const TemporaryFolder& folder, const Text& bytes, const Text& name = "song.mp3")
{
    putFile(folder / name, bytes);
    return folder / name;
}

inline bool holdsOnlyTheSong(const TemporaryFolder& folder)
{
    return namesInFolder(folder.path()) == std::set<Text>{"song.mp3"};
}
